/* vdpgl: the plug-in's exported interface, as a host sees it.
 * Every function has C linkage and is exported under its plain name. */
#ifndef VDPGL_VDPGL_H
#define VDPGL_VDPGL_H

#include <stdint.h>

#if defined(__GNUC__)
#define VDPGL_EXPORT __attribute__((visibility("default")))
#else
#define VDPGL_EXPORT
#endif

#ifdef __cplusplus
#include <cstdbool>
extern "C" {
#else
#include <stdbool.h>
#endif

/* GetPluginType's answer: a video plug-in. */
#define VDPGL_PLUGIN_TYPE 0x82

/* Lifecycle. InitVDPPlugin's record is two pointer-size words: the plug-in's
 * module handle, then the host window (parent of the display window). A null
 * record reads as two zero words. */
VDPGL_EXPORT bool InitVDPPlugin(void* record);
VDPGL_EXPORT void DeInitPlugin(void);
VDPGL_EXPORT void Reset(void);
VDPGL_EXPORT void SetupPlugin(void);
VDPGL_EXPORT void EmulationThreadStarting(void);
VDPGL_EXPORT void EmulationThreadStoping(void);

/* Information. The buffers must hold the whole text with its zero. */
VDPGL_EXPORT char* GetPluginName(char* buffer);
VDPGL_EXPORT char* GetPluginInfos(char* buffer);
VDPGL_EXPORT uint8_t GetPluginType(void);
VDPGL_EXPORT void DisplayPluginInfo(void);

/* Blanking events. */
VDPGL_EXPORT void VDPOnVblankIn(void);
VDPGL_EXPORT void VDPOnVblankOut(void);
VDPGL_EXPORT void VDPOnHblankIn(void);
VDPGL_EXPORT void VDPOnHblankOut(void);

/* Beside the host interface: the rendering size, and the picture presented
 * by the last swap as 8-bit RGBA, top row first. CaptureDisplay returns 1, or
 * 0 when no frame was presented yet, the size does not match, or it is called
 * off the emulation thread (the thread that called EmulationThreadStarting). */
VDPGL_EXPORT void GetDisplaySize(int* width, int* height);
VDPGL_EXPORT int CaptureDisplay(unsigned char* rgba, int width, int height);

/* What the plug-in's caches hold: VDP1's character patterns and their
 * textures within the texture budget, and VDP2's decoded cells and their
 * pictures (one per palette a cell is drawn with). GetCacheCounters fills
 * the record and returns 1, or returns 0 before InitVDPPlugin; any thread
 * may call it. */
typedef struct VdpglCacheCounters {
    uint32_t vdp1Patterns;
    uint32_t vdp1Textures;
    uint64_t vdp1TextureBytes;
    uint64_t vdp1TextureBudget;
    uint32_t vdp2Cells;
    uint32_t vdp2Pictures;
    uint64_t vdp2CellBytes;
} VdpglCacheCounters;
VDPGL_EXPORT int GetCacheCounters(VdpglCacheCounters* counters);

/* Where the last frame's time went: the CPU time of the thread that called
 * VDPOnVblankOut, in milliseconds, for each phase of the frame. The walk of
 * VDP1's command list and the parts it builds; VDP1's texture decoding,
 * upload and release; VDP2's registers, the cell load pass and bitmaps;
 * rotation sampling with its picture's upload; drawing submitted to GL; the
 * swap and clear. The first call turns the measurement on (a clock read at
 * each phase switch; until then a frame pays one flag test) and returns 0;
 * later calls fill the record and return 1 once a frame has been measured.
 * Call it on the emulation thread, between frames. */
enum {
    VDPGL_PHASE_WALK,
    VDPGL_PHASE_TEXTURES,
    VDPGL_PHASE_VDP2,
    VDPGL_PHASE_ROTATION,
    VDPGL_PHASE_SUBMIT,
    VDPGL_PHASE_SWAP,
    VDPGL_PHASE_COUNT
};
typedef struct VdpglFrameProfile {
    double milliseconds[VDPGL_PHASE_COUNT];
} VdpglFrameProfile;
VDPGL_EXPORT int GetFrameProfile(VdpglFrameProfile* profile);

/* Loads the replacement texture set of this name (a folder under
 * replacement_texture_set/ in the directory of InitVDPPlugin), replacing the
 * loaded set and its unsaved changes, and activates it: from the next frame,
 * every VDP1 pattern it names is drawn with its image. Returns 1, or 0 when
 * the folder does not exist or holds no readable INI file (then nothing
 * changes). A null name deactivates the active set. Any thread. */
VDPGL_EXPORT int ActivateTextureSet(const char* name);

/* Opens one of the plug-in's dialogs as its menu or control panel would:
 * "panel" (the control panel), "viewer" (the VDP2 background viewer) or
 * "editor" (the texture replacement editor).
 * Returns 1, or 0 for another name, before InitVDPPlugin, or without a
 * display. Any thread; it does not wait for the dialog. */
VDPGL_EXPORT int OpenDialog(const char* name);

/* Memory and register ports. Addresses are masked by each memory's size. */
VDPGL_EXPORT void WriteByteVDP1FrameBuffer(uint32_t address, uint8_t value);
VDPGL_EXPORT void WriteWordVDP1FrameBuffer(uint32_t address, uint16_t value);
VDPGL_EXPORT void WriteLongVDP1FrameBuffer(uint32_t address, uint32_t value);
VDPGL_EXPORT uint8_t ReadByteVDP1FrameBuffer(uint32_t address);
VDPGL_EXPORT uint16_t ReadWordVDP1FrameBuffer(uint32_t address);
VDPGL_EXPORT uint32_t ReadLongVDP1FrameBuffer(uint32_t address);

VDPGL_EXPORT void WriteByteVDP1VRAM(uint32_t address, uint8_t value);
VDPGL_EXPORT void WriteWordVDP1VRAM(uint32_t address, uint16_t value);
VDPGL_EXPORT void WriteLongVDP1VRAM(uint32_t address, uint32_t value);
VDPGL_EXPORT uint8_t ReadByteVDP1VRAM(uint32_t address);
VDPGL_EXPORT uint16_t ReadWordVDP1VRAM(uint32_t address);
VDPGL_EXPORT uint32_t ReadLongVDP1VRAM(uint32_t address);

VDPGL_EXPORT void WriteByteVDP2Regs(uint32_t address, uint8_t value);
VDPGL_EXPORT void WriteWordVDP2Regs(uint32_t address, uint16_t value);
VDPGL_EXPORT void WriteLongVDP2Regs(uint32_t address, uint32_t value);
VDPGL_EXPORT uint8_t ReadByteVDP2Regs(uint32_t address);
VDPGL_EXPORT uint16_t ReadWordVDP2Regs(uint32_t address);
VDPGL_EXPORT uint32_t ReadLongVDP2Regs(uint32_t address);

VDPGL_EXPORT void WriteByteVDP2VRAM(uint32_t address, uint8_t value);
VDPGL_EXPORT void WriteWordVDP2VRAM(uint32_t address, uint16_t value);
VDPGL_EXPORT void WriteLongVDP2VRAM(uint32_t address, uint32_t value);
VDPGL_EXPORT uint8_t ReadByteVDP2VRAM(uint32_t address);
VDPGL_EXPORT uint16_t ReadWordVDP2VRAM(uint32_t address);
VDPGL_EXPORT uint32_t ReadLongVDP2VRAM(uint32_t address);

VDPGL_EXPORT void WriteByteVDP2CRAM(uint32_t address, uint8_t value);
VDPGL_EXPORT void WriteWordVDP2CRAM(uint32_t address, uint16_t value);
VDPGL_EXPORT void WriteLongVDP2CRAM(uint32_t address, uint32_t value);
VDPGL_EXPORT uint8_t ReadByteVDP2CRAM(uint32_t address);
VDPGL_EXPORT uint16_t ReadWordVDP2CRAM(uint32_t address);
VDPGL_EXPORT uint32_t ReadLongVDP2CRAM(uint32_t address);
/* VDP1's registers have 16-bit ports only. */
VDPGL_EXPORT void WriteWordVDP1Regs(uint32_t address, uint16_t value);
VDPGL_EXPORT uint16_t ReadWordVDP1Regs(uint32_t address);

#ifdef __cplusplus
}
#endif

#endif
