#pragma once
// VRAM of VDP1 and VDP2 as the console sees it, stored so that every aligned
// 32-bit host word holds four console bytes in big-endian order. On a
// little-endian host console byte a lives at host byte a^3 and console word a
// at host halfword a^2, so 16- and 32-bit values are stored without swapping.
#include <cstdint>
#include <cstring>
#include <bit>

namespace vdpgl {

static_assert(std::endian::native == std::endian::little,
              "the console-order VRAM layout assumes a little-endian host");

class CConsoleVram {
public:
    static constexpr uint32_t kSize = 0x80000;
    static constexpr uint32_t kMask = kSize - 1;

    // Offsets into the host bytes. Misaligned word and long addresses are
    // aligned down so that no access ever leaves the array.
    static constexpr uint32_t ByteOffset(uint32_t a) { return (a & kMask) ^ 3; }
    static constexpr uint32_t WordOffset(uint32_t a) { return (a & kMask & ~1u) ^ 2; }
    static constexpr uint32_t LongOffset(uint32_t a) { return a & kMask & ~3u; }

    uint8_t ReadByte(uint32_t a) const { return bytes[ByteOffset(a)]; }
    uint16_t ReadWord(uint32_t a) const { return Load<uint16_t>(WordOffset(a)); }
    uint32_t ReadLong(uint32_t a) const { return Load<uint32_t>(LongOffset(a)); }

    // Each write returns whether the stored value changed; callers invalidate
    // their caches only then.
    bool WriteByte(uint32_t a, uint8_t v) {
        uint8_t& slot = bytes[ByteOffset(a)];
        if (slot == v) return false;
        slot = v;
        return true;
    }
    bool WriteWord(uint32_t a, uint16_t v) { return Store(WordOffset(a), v); }
    bool WriteLong(uint32_t a, uint32_t v) { return Store(LongOffset(a), v); }

    void Clear() { std::memset(bytes, 0, sizeof bytes); }

    // Raw host bytes, in the layout above (decoders and checksums read these).
    const uint8_t* Data() const { return bytes; }

private:
    template <typename T>
    T Load(uint32_t offset) const {
        T v;
        std::memcpy(&v, bytes + offset, sizeof v);
        return v;
    }
    template <typename T>
    bool Store(uint32_t offset, T v) {
        if (Load<T>(offset) == v) return false;
        std::memcpy(bytes + offset, &v, sizeof v);
        return true;
    }

    alignas(4) uint8_t bytes[kSize] = {};
};

}  // namespace vdpgl
