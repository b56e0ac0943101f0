// Where the library's memory comes from: the default heap, and blocks that are used again in front of it. The
// global operator new is left alone: heap blocks are aligned to eight bytes, and a caller's delete would
// cross allocators.
#pragma once

#include "core/block_cache.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace qzr {

// n zeroed bytes of the default heap, aligned to eight; a block of IHeap in every respect. Throws
// CXMemException.
void* mem_alloc(std::size_t n);

// Frees a block of mem_alloc or of any IHeap; null is fine.
void mem_free(void* p) noexcept;

// A copy of n bytes, to be freed by mem_free. Throws CXMemException.
char* mem_dup(const void* bytes, std::size_t n);

// A block of at least n bytes with anything in it, recycled by size. Give it back to block_free, not to
// mem_free, with the same n; any thread may. Never waits for another thread. Throws CXMemException.
void* block_alloc(std::size_t n);
void block_free(void* p, std::size_t n) noexcept; // null is fine

// Whether a block for old_n bytes does for n bytes as it is, and may be given back as one of n.
constexpr bool block_refits(std::size_t old_n, std::size_t n) noexcept {
    return BlockCache::rounded(old_n) == BlockCache::rounded(n);
}

// A block of old_n bytes with its bytes, made into one of n, which is more: in place where it has the room or
// the heap can stretch it. Throws CXMemException; the old block then stays as it was.
void* block_grow(void* p, std::size_t old_n, std::size_t n);

// Objects in such blocks.
template <class T, class... Arguments>
T* block_new(Arguments&&... arguments) {
    static_assert(alignof(T) <= 8, "heap blocks are aligned to eight bytes");
    void* const place = block_alloc(sizeof(T));
    try {
        return new (place) T(std::forward<Arguments>(arguments)...);
    } catch (...) {
        block_free(place, sizeof(T));
        throw;
    }
}

template <class T>
void block_delete(T* object) noexcept {
    if (object == nullptr) return;
    object->~T();
    block_free(object, sizeof(T));
}

struct BlockDeleter {
    template <class T>
    void operator()(T* object) const noexcept {
        block_delete(object);
    }
};
template <class T>
using BlockPtr = std::unique_ptr<T, BlockDeleter>;

// For the containers of the standard library: exhaustion is CXMemException there too.
template <class T>
struct HeapAllocator {
    using value_type = T;
    static_assert(alignof(T) <= 8, "heap blocks are aligned to eight bytes");

    HeapAllocator() noexcept = default;
    template <class U>
    HeapAllocator(const HeapAllocator<U>&) noexcept {}

    T* allocate(std::size_t n) {
        constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max() / sizeof(T);
        return static_cast<T*>(
            mem_alloc(n <= kMost ? n * sizeof(T) : std::numeric_limits<std::size_t>::max()));
    }
    void deallocate(T* p, std::size_t) noexcept { mem_free(p); }

    friend bool operator==(const HeapAllocator&, const HeapAllocator&) noexcept { return true; }
};

template <class T>
using Vector = std::vector<T, HeapAllocator<T>>;

} // namespace qzr
