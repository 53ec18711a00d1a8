#pragma once
// CBackground: what VDP2's composition asks of each of its six backgrounds
// (NBG0-NBG3, RBG0, RBG1): the priority it is drawn at, and the drawing.
#include <cstdint>

namespace vdpgl {

class CBackground {
public:
    explicit CBackground(uint32_t number) : bgNumber(number) {}
    virtual ~CBackground() = default;
    CBackground(const CBackground&) = delete;
    CBackground& operator=(const CBackground&) = delete;

    // 0 to 7; 0 means the background is not displayed.
    virtual uint32_t GetPriority() const = 0;
    virtual void Draw() = 0;

    const uint32_t bgNumber;
};

}  // namespace vdpgl
