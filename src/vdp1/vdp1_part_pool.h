#pragma once
// Storage for one walk's parts. The walk builds a part per drawing command
// at every drawn frame; taking them from slots reserved once, instead of the
// heap, keeps the walk free of allocations. A walk processes at most 4,001
// commands, so that many slots always suffice.
#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <utility>

#include "vdp1/vdp1_part.h"

namespace vdpgl {

class CVdp1PartPool {
public:
    explicit CVdp1PartPool(std::size_t capacity) : capacity(capacity) {}
    ~CVdp1PartPool() { Clear(); }
    CVdp1PartPool(const CVdp1PartPool&) = delete;
    CVdp1PartPool& operator=(const CVdp1PartPool&) = delete;

    // Builds a part in the next slot; nullptr once every slot is taken.
    template <typename Part, typename... Args>
    Part* Make(Args&&... args) {
        static_assert(sizeof(Part) <= sizeof(Slot) && alignof(Part) <= alignof(Slot), "part larger than a slot");
        if (used == capacity) return nullptr;
        if (!slots) {
            slots = std::make_unique<Slot[]>(capacity);
            built = std::make_unique<CVdp1Part*[]>(capacity);
        }
        Part* part = new (&slots[used]) Part(std::forward<Args>(args)...);
        built[used++] = part;
        return part;
    }

    // Destroys every part, in the order they were built.
    void Clear() {
        for (std::size_t i = 0; i < used; ++i) built[i]->~CVdp1Part();
        used = 0;
    }

    std::size_t Size() const { return used; }

private:
    static constexpr std::size_t kSlotSize =
        std::max({sizeof(CVdp1NormalSprite), sizeof(CVdp1ScaledSprite), sizeof(CVdp1DistortedSprite),
                  sizeof(CVdp1Polygon), sizeof(CVdp1Polyline), sizeof(CVdp1Line)});
    struct alignas(std::max_align_t) Slot {
        unsigned char bytes[kSlotSize];
    };

    const std::size_t capacity;
    std::size_t used = 0;
    std::unique_ptr<Slot[]> slots;
    std::unique_ptr<CVdp1Part*[]> built;
};

}  // namespace vdpgl
