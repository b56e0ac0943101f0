#include "core/allocator.h"

#include "core/library.h"
#include "core/move_bytes.h"

namespace qzr {

namespace {

// Copies a kept block as a whole: its size is a multiple of sixteen.
void move_block(void* to, const void* from, std::size_t size) noexcept {
    auto* target = static_cast<__m128i*>(to);
    const auto* source = static_cast<const __m128i*>(from);
    for (const __m128i* const end = source + size / sizeof *source; source != end; ++source, ++target)
        _mm_storeu_si128(target, _mm_loadu_si128(source));
}

} // namespace

void* mem_alloc(std::size_t n) { return library().heaps.default_heap().Alloc(n); }

void mem_free(void* p) noexcept {
    if (p != nullptr) CHeap::free_block(p);
}

char* mem_dup(const void* bytes, std::size_t n) {
    void* const copy = library().heaps.default_heap().alloc_unzeroed(n);
    move_bytes(copy, bytes, n);
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
    const std::size_t room = BlockCache::rounded(old_n);
    if (n <= room) return p;
    if (!BlockCache::keeps(old_n)) return CHeap::stretch(p, BlockCache::rounded(n));
    void* const grown = block_alloc(n);
    move_block(grown, p, room);
    block_free(p, old_n);
    return grown;
}

} // namespace qzr
