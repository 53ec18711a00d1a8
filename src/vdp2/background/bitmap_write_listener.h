#pragma once
// NBG0 and NBG1 in bitmap mode want to hear of every VRAM write that changes
// a value, to rebuild their bitmap texture when the write lies inside it.
// A background registers itself with CVdp2 while it is in bitmap mode, so the
// VRAM port pays only a null test per background otherwise.
#include <cstdint>

namespace vdpgl {

class CBitmapWriteListener {
public:
    virtual void OnBitmapVramWrite(uint32_t address) = 0;

protected:
    ~CBitmapWriteListener() = default;
};

}  // namespace vdpgl
