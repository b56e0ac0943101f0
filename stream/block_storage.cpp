#include "stream/block_storage.h"

#include "core/allocator.h"
#include "core/library.h"

#include <cstring>

namespace qzr {

namespace {

// Larger blocks the heap would get from the system one by one, with a copy each time.
constexpr std::size_t kMostInHeap = std::size_t{256} << 10;

// Blocks that pass the first reservation move once more, to one that holds whatever a stream can.
constexpr std::size_t kFirstReservation = std::size_t{256} << 20;
constexpr std::size_t kLastReservation = std::size_t{4} << 30;

void* reserve(std::size_t bytes) noexcept { return VirtualAlloc(nullptr, bytes, MEM_RESERVE, PAGE_NOACCESS); }

void* commit(void* space, std::size_t bytes) noexcept {
    return VirtualAlloc(space, bytes, MEM_COMMIT, PAGE_READWRITE);
}

// Reserves `reserved` bytes, or what is asked for when the process is short of address space, and commits the
// first ones. @return null when the system refuses
void* reserve_and_commit(std::size_t& reserved, std::size_t bytes) noexcept {
    std::size_t size = reserved;
    void* space = reserve(size);
    if (space == nullptr) space = reserve(size = bytes);
    if (space == nullptr) return nullptr;
    if (commit(space, bytes) == nullptr) {
        VirtualFree(space, 0, MEM_RELEASE);
        return nullptr;
    }
    reserved = size;
    return space;
}

// Such memory is asked for, and counted, as if the heap gave it.
template <class Request>
unsigned char* obtain(std::size_t bytes, Request request) {
    return static_cast<unsigned char*>(library().heaps.obtain(bytes + CHeap::kOverhead, request));
}

void count_free() noexcept { library().heaps.activity().count_free(); }

} // namespace

BlockStorage::BlockStorage(std::size_t bytes) {
    if (bytes == 0) return;
    if (bytes <= kMostInHeap) {
        data_ = static_cast<unsigned char*>(mem_alloc(bytes));
        return;
    }
    std::size_t reserved = bytes <= kFirstReservation ? kFirstReservation : kLastReservation;
    data_ = obtain(bytes, [&]() noexcept { return reserve_and_commit(reserved, bytes); });
    reserved_ = reserved;
}

BlockStorage::~BlockStorage() {
    if (reserved_ != 0) {
        VirtualFree(data_, 0, MEM_RELEASE);
        count_free();
    } else {
        mem_free(data_);
    }
}

void BlockStorage::grow(std::size_t bytes, std::size_t used) {
    if (bytes <= reserved_) {
        obtain(bytes, [&]() noexcept { return commit(data_, bytes); });
        count_free(); // what it grew out of
        return;
    }
    BlockStorage larger(bytes);
    if (used != 0) std::memcpy(larger.data_, data_, used);
    swap(larger);
}

} // namespace qzr
