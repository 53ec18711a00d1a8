#pragma once
// CTextureAtlas: where small textures live, without GL. A page is a square
// texture cut into blocks of kBlockSide x kBlockSide texels; a block serves
// one size class (both sides powers of two up to kBlockSide) and is cut into
// slots of that size. Blocks are handed out from the lowest page first, so
// that a frame's textures crowd into few pages and its sprites bind few
// textures. Page 0 is kept while the atlas lives, and its first block (in
// every page) is left out: its texel (0, 0) is the white texel shapes are
// drawn with. A texture too large, or one that finds every page taken, keeps
// a texture of its own.
#include <cstdint>
#include <vector>

namespace vdpgl {

// Where a texture's texels lie: the GL texture, and for a slot of an atlas
// page its place and size in texels and the page's size (0 for a texture of
// its own).
struct TextureRect {
    uint32_t texture = 0;
    uint16_t x = 0, y = 0;
    uint16_t width = 0, height = 0;
    uint16_t pageWidth = 0, pageHeight = 0;
};

class CTextureAtlas {
public:
    static constexpr int kPageSide = 1024;
    static constexpr int kBlockSide = 64;
    static constexpr int kBlocksAcross = kPageSide / kBlockSide;
    static constexpr int kBlocksPerPage = kBlocksAcross * kBlocksAcross;
    static constexpr int kMostPages = 16;

    struct Slot {
        int page = -1;  // -1: no place in the atlas
        int block = 0;
        int index = 0;
        int x = 0, y = 0;  // texels
    };

    // A place for a texture of this size (both powers of two). A page made
    // for it is told by newPage: the caller creates its texture.
    Slot Allocate(int width, int height, bool& newPage);
    // Gives the slot back; true when its page is dropped (the caller deletes
    // the page's texture).
    bool Free(const Slot& slot);
    // Makes page 0 unless it is there; true when it made it.
    bool MakeFirstPage();
    // Forgets every page (their textures went with the context).
    void Reset();

    int PageCount() const { return livePages; }
    int SlotCount() const { return liveSlots; }

private:
    static constexpr int kSides = 7;  // 1, 2, 4 ... 64
    static constexpr int kClasses = kSides * kSides;
    struct Block {
        int sizeClass = -1;  // -1: free
        int columns = 0;
        int used = 0;
        std::vector<uint16_t> freeSlots;
    };
    struct Page {
        bool live = false;
        int used = 0;  // blocks given to a class
        std::vector<Block> blocks;
    };
    struct BlockRef {
        int page, block;
    };
    static int SizeClass(int width, int height);
    int NewPage();
    bool TakeBlock(int sizeClass, int width, int height, BlockRef& taken, bool& newPage);

    std::vector<Page> pages;
    std::vector<BlockRef> openBlocks[kClasses];  // blocks of each class with a free slot
    int livePages = 0;
    int liveSlots = 0;
};

}  // namespace vdpgl
