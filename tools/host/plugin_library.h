#pragma once
// The host side of the plug-in interface: loads a vdpgl library with dlopen
// and resolves every export, as a host emulator does. Used by our own player
// and by the tests that drive the plug-in only through its exports.
#include <cstdint>
#include <string>

#include "vdpgl/vdpgl.h"

namespace vdpgl::host {

// Every export of the plug-in with its signature: X(name, result, arguments).
#define VDPGL_HOST_EXPORTS(X)                                    \
    X(InitVDPPlugin, bool, (void*))                              \
    X(DeInitPlugin, void, ())                                    \
    X(Reset, void, ())                                           \
    X(SetupPlugin, void, ())                                     \
    X(GetPluginName, char*, (char*))                             \
    X(GetPluginInfos, char*, (char*))                            \
    X(GetPluginType, uint8_t, ())                                \
    X(DisplayPluginInfo, void, ())                               \
    X(EmulationThreadStarting, void, ())                         \
    X(EmulationThreadStoping, void, ())                          \
    X(VDPOnVblankIn, void, ())                                   \
    X(VDPOnVblankOut, void, ())                                  \
    X(VDPOnHblankIn, void, ())                                   \
    X(VDPOnHblankOut, void, ())                                  \
    X(GetDisplaySize, void, (int*, int*))                        \
    X(CaptureDisplay, int, (unsigned char*, int, int))           \
    X(GetCacheCounters, int, (VdpglCacheCounters*))              \
    X(GetFrameProfile, int, (VdpglFrameProfile*))                \
    X(ActivateTextureSet, int, (const char*))                    \
    X(OpenDialog, int, (const char*))                            \
    X(WriteByteVDP1FrameBuffer, void, (uint32_t, uint8_t))       \
    X(WriteWordVDP1FrameBuffer, void, (uint32_t, uint16_t))      \
    X(WriteLongVDP1FrameBuffer, void, (uint32_t, uint32_t))      \
    X(ReadByteVDP1FrameBuffer, uint8_t, (uint32_t))              \
    X(ReadWordVDP1FrameBuffer, uint16_t, (uint32_t))             \
    X(ReadLongVDP1FrameBuffer, uint32_t, (uint32_t))             \
    X(WriteByteVDP1VRAM, void, (uint32_t, uint8_t))              \
    X(WriteWordVDP1VRAM, void, (uint32_t, uint16_t))             \
    X(WriteLongVDP1VRAM, void, (uint32_t, uint32_t))             \
    X(ReadByteVDP1VRAM, uint8_t, (uint32_t))                     \
    X(ReadWordVDP1VRAM, uint16_t, (uint32_t))                    \
    X(ReadLongVDP1VRAM, uint32_t, (uint32_t))                    \
    X(WriteWordVDP1Regs, void, (uint32_t, uint16_t))             \
    X(ReadWordVDP1Regs, uint16_t, (uint32_t))                    \
    X(WriteByteVDP2Regs, void, (uint32_t, uint8_t))              \
    X(WriteWordVDP2Regs, void, (uint32_t, uint16_t))             \
    X(WriteLongVDP2Regs, void, (uint32_t, uint32_t))             \
    X(ReadByteVDP2Regs, uint8_t, (uint32_t))                     \
    X(ReadWordVDP2Regs, uint16_t, (uint32_t))                    \
    X(ReadLongVDP2Regs, uint32_t, (uint32_t))                    \
    X(WriteByteVDP2VRAM, void, (uint32_t, uint8_t))              \
    X(WriteWordVDP2VRAM, void, (uint32_t, uint16_t))             \
    X(WriteLongVDP2VRAM, void, (uint32_t, uint32_t))             \
    X(ReadByteVDP2VRAM, uint8_t, (uint32_t))                     \
    X(ReadWordVDP2VRAM, uint16_t, (uint32_t))                    \
    X(ReadLongVDP2VRAM, uint32_t, (uint32_t))                    \
    X(WriteByteVDP2CRAM, void, (uint32_t, uint8_t))              \
    X(WriteWordVDP2CRAM, void, (uint32_t, uint16_t))             \
    X(WriteLongVDP2CRAM, void, (uint32_t, uint32_t))             \
    X(ReadByteVDP2CRAM, uint8_t, (uint32_t))                     \
    X(ReadWordVDP2CRAM, uint16_t, (uint32_t))                    \
    X(ReadLongVDP2CRAM, uint32_t, (uint32_t))

struct PluginExports {
#define VDPGL_HOST_MEMBER(name, result, args) result(*name) args = nullptr;
    VDPGL_HOST_EXPORTS(VDPGL_HOST_MEMBER)
#undef VDPGL_HOST_MEMBER
};

class CPluginLibrary {
public:
    CPluginLibrary() = default;
    ~CPluginLibrary();
    CPluginLibrary(const CPluginLibrary&) = delete;
    CPluginLibrary& operator=(const CPluginLibrary&) = delete;

    // Loads the library and resolves every export. On failure returns false
    // and leaves a message that names the file and what went wrong.
    bool Load(const std::string& path);
    void Unload();

    bool IsLoaded() const { return handle != nullptr; }
    const PluginExports& Exports() const { return exports; }
    const std::string& Error() const { return error; }

private:
    void* handle = nullptr;
    PluginExports exports;
    std::string error;
};

}  // namespace vdpgl::host
