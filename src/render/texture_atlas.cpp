#include "render/texture_atlas.h"

#include <algorithm>
#include <bit>

namespace vdpgl {

int CTextureAtlas::SizeClass(int width, int height) {
    return std::countr_zero(static_cast<unsigned>(width)) * kSides + std::countr_zero(static_cast<unsigned>(height));
}

bool CTextureAtlas::TakeBlock(int sizeClass, int width, int height, BlockRef& taken, bool& newPage) {
    // The lowest page with a free block, else a new page.
    const int count = static_cast<int>(pages.size());
    int chosen = -1;
    for (int p = 0; p < count && chosen < 0; ++p) {
        const Page& page = pages[static_cast<size_t>(p)];
        if (page.live && page.used < kBlocksPerPage - 1) chosen = p;
    }
    if (chosen < 0) {
        if (livePages >= kMostPages) return false;
        chosen = NewPage();
        newPage = true;
    }
    Page& page = pages[static_cast<size_t>(chosen)];
    int b = 1;
    while (page.blocks[static_cast<size_t>(b)].sizeClass >= 0) ++b;
    Block& block = page.blocks[static_cast<size_t>(b)];
    block.sizeClass = sizeClass;
    block.columns = kBlockSide / width;
    block.used = 0;
    const int slots = block.columns * (kBlockSide / height);
    block.freeSlots.resize(static_cast<size_t>(slots));
    // Handed out from slot 0 on.
    for (int i = 0; i < slots; ++i) block.freeSlots[static_cast<size_t>(i)] = static_cast<uint16_t>(slots - 1 - i);
    ++page.used;
    taken = {chosen, b};
    return true;
}

int CTextureAtlas::NewPage() {
    int number = 0;
    const int count = static_cast<int>(pages.size());
    while (number < count && pages[static_cast<size_t>(number)].live) ++number;
    if (number == count) pages.emplace_back();
    Page& page = pages[static_cast<size_t>(number)];
    page.live = true;
    page.used = 0;
    page.blocks.assign(kBlocksPerPage, Block{});
    page.blocks[0].sizeClass = kClasses;  // the white texel's block, never handed out
    ++livePages;
    return number;
}

bool CTextureAtlas::MakeFirstPage() {
    if (!pages.empty() && pages[0].live) return false;
    return NewPage() == 0;
}

CTextureAtlas::Slot CTextureAtlas::Allocate(int width, int height, bool& newPage) {
    newPage = false;
    if (width <= 0 || height <= 0 || width > kBlockSide || height > kBlockSide ||
        !std::has_single_bit(static_cast<unsigned>(width)) || !std::has_single_bit(static_cast<unsigned>(height)))
        return {};
    const int sizeClass = SizeClass(width, height);
    std::vector<BlockRef>& open = openBlocks[sizeClass];
    if (open.empty()) {
        BlockRef taken{};
        if (!TakeBlock(sizeClass, width, height, taken, newPage)) return {};
        open.push_back(taken);
    }
    // The open block of the lowest page.
    const auto it = std::min_element(open.begin(), open.end(),
                                     [](const BlockRef& a, const BlockRef& b) { return a.page < b.page; });
    const BlockRef ref = *it;
    Block& block = pages[static_cast<size_t>(ref.page)].blocks[static_cast<size_t>(ref.block)];
    Slot slot;
    slot.page = ref.page;
    slot.block = ref.block;
    slot.index = block.freeSlots.back();
    block.freeSlots.pop_back();
    slot.x = (ref.block % kBlocksAcross) * kBlockSide + (slot.index % block.columns) * width;
    slot.y = (ref.block / kBlocksAcross) * kBlockSide + (slot.index / block.columns) * height;
    ++block.used;
    ++liveSlots;
    if (block.freeSlots.empty()) open.erase(it);
    return slot;
}

bool CTextureAtlas::Free(const Slot& slot) {
    if (slot.page < 0 || slot.page >= static_cast<int>(pages.size())) return false;
    Page& page = pages[static_cast<size_t>(slot.page)];
    if (!page.live || slot.block <= 0 || slot.block >= kBlocksPerPage) return false;
    Block& block = page.blocks[static_cast<size_t>(slot.block)];
    if (block.sizeClass < 0 || block.sizeClass >= kClasses || block.used == 0) return false;
    std::vector<BlockRef>& open = openBlocks[block.sizeClass];
    if (block.freeSlots.empty()) open.push_back({slot.page, slot.block});
    block.freeSlots.push_back(static_cast<uint16_t>(slot.index));
    --block.used;
    --liveSlots;
    if (block.used > 0) return false;
    // An empty block goes back to its page, and an empty page, but page 0,
    // goes.
    open.erase(std::find_if(open.begin(), open.end(), [&](const BlockRef& r) {
        return r.page == slot.page && r.block == slot.block;
    }));
    block = Block{};
    if (--page.used > 0 || slot.page == 0) return false;
    page = Page{};
    --livePages;
    return true;
}

void CTextureAtlas::Reset() {
    pages.clear();
    for (std::vector<BlockRef>& open : openBlocks) open.clear();
    livePages = liveSlots = 0;
}

}  // namespace vdpgl
