#pragma once
// The VDP1 texture cache and the VDP2 cell cache both map fixed-size units of
// VRAM to the cached object that covers them; one object may fill several
// consecutive entries. Deleting from such a table empties every entry of an
// object before the object is deleted, once.
#include <algorithm>
#include <cstddef>
#include <vector>

namespace vdpgl {

// Deletes every object of the table for which doomed(object) holds.
// scratch is reused between calls so that a frame's purge allocates nothing
// once it has grown.
template <typename T, typename Predicate>
void DeleteTableEntriesWhere(T** table, std::size_t size, std::vector<T*>& scratch, Predicate doomed) {
    scratch.clear();
    for (std::size_t i = 0; i < size; ++i) {
        if (table[i] && doomed(table[i])) {
            scratch.push_back(table[i]);
            table[i] = nullptr;
        }
    }
    std::sort(scratch.begin(), scratch.end());
    scratch.erase(std::unique(scratch.begin(), scratch.end()), scratch.end());
    for (T* object : scratch) delete object;
    scratch.clear();
}

}  // namespace vdpgl
