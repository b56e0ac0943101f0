#include "core/block_cache.h"

#include "core/heap.h"

namespace qzr {

void BlockCache::clear() noexcept {
    for (SizeClass& c : classes_) {
        while (c.first != nullptr) {
            FreeBlock* const block = c.first;
            c.first = block->next;
            CHeap::free_block(block);
        }
        c.count = 0;
    }
}

} // namespace qzr
