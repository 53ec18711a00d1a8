#pragma once
// PaletteBlocks: a set of colour RAM's 128 blocks of 16 words. Whoever keeps
// what it made from colours (a plane texture, a rotation plane's prepared
// characters) notes the blocks it read, and later asks the chip whether any
// of those changed, instead of starting over whenever any colour changes:
// a game that cycles its sprites' palettes leaves the backgrounds' alone.
#include <bit>
#include <cstdint>

namespace vdpgl {

struct PaletteBlocks {
    static constexpr uint32_t kBlocks = 128;

    void Add(uint32_t block) {
        block &= kBlocks - 1;
        bits[block / 64] |= uint64_t{1} << (block % 64);
    }
    // `count` blocks from `first`, wrapping at the end of colour RAM.
    void AddRun(uint32_t first, uint32_t count) {
        for (uint32_t i = 0; i < count && i < kBlocks; ++i) Add(first + i);
    }
    void AddAll() { bits[0] = bits[1] = ~uint64_t{0}; }
    void Clear() { bits[0] = bits[1] = 0; }
    PaletteBlocks& operator|=(const PaletteBlocks& other) {
        bits[0] |= other.bits[0];
        bits[1] |= other.bits[1];
        return *this;
    }
    // Calls f(block) for every block in the set, lowest first, until f says true;
    // returns whether one did.
    template <typename F>
    bool Any(F f) const {
        for (uint32_t word = 0; word < 2; ++word)
            for (uint64_t b = bits[word]; b; b &= b - 1)
                if (f(word * 64 + static_cast<uint32_t>(std::countr_zero(b)))) return true;
        return false;
    }

    uint64_t bits[2] = {};
};

}  // namespace vdpgl
