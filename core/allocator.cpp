#include "core/allocator.h"

#include "core/library.h"

#include <cstring>

namespace qzr {

void* mem_alloc(std::size_t n) { return library().heaps.default_heap().Alloc(n); }

void mem_free(void* p) noexcept {
    if (p != nullptr) CHeap::free_block(p);
}

char* mem_dup(const void* bytes, std::size_t n) {
    void* const copy = library().heaps.default_heap().alloc_unzeroed(n);
    if (n != 0) std::memcpy(copy, bytes, n);
    return static_cast<char*>(copy);
}

void* block_alloc(std::size_t n) {
    if (void* const recycled = library().blocks.take(n)) return recycled;
    return library().heaps.default_heap().alloc_unzeroed(BlockCache::rounded(n));
}

void block_free(void* p, std::size_t n) noexcept {
    if (p != nullptr && !library().blocks.keep(p, n)) CHeap::free_block(p);
}

void* block_grow(void* p, std::size_t old_n, std::size_t n) {
    if (block_refits(old_n, n)) return p;
    if (!BlockCache::keeps(old_n)) return CHeap::stretch(p, BlockCache::rounded(n));
    void* const grown = block_alloc(n);
    std::memcpy(grown, p, old_n);
    block_free(p, old_n);
    return grown;
}

} // namespace qzr
