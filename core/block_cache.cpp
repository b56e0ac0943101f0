#include "core/block_cache.h"

#include "core/heap.h"

namespace qzr {

void BlockCache::List::clear() noexcept {
    while (first != nullptr) {
        FreeBlock* const block = first;
        first = block->next;
        CHeap::free_block(block);
    }
    count = 0;
}

void BlockCache::clear() noexcept {
    for (List& list : own_)
        list.clear();
    for (SharedList& shared : shared_)
        shared.list.clear();
}

} // namespace qzr
