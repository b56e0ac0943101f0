#include "stream/block_storage.h"

#include "core/allocator.h"
#include "core/windows_lean.h"
#include "qzexception.h"

#include <cstring>

namespace qzr {

namespace {

// Larger blocks the heap would get from the system one by one, with a copy each time.
constexpr std::size_t kMostInHeap = std::size_t{256} << 10;

// Blocks that pass the first reservation move once more, to one that holds whatever a stream can.
constexpr std::size_t kFirstReservation = std::size_t{256} << 20;
constexpr std::size_t kLastReservation = std::size_t{4} << 30;

void* reserve(std::size_t bytes) { return VirtualAlloc(nullptr, bytes, MEM_RESERVE, PAGE_NOACCESS); }

bool commit(void* p, std::size_t bytes) {
    return VirtualAlloc(p, bytes, MEM_COMMIT, PAGE_READWRITE) != nullptr;
}

} // namespace

BlockStorage::BlockStorage(std::size_t bytes) {
    if (bytes == 0) return;
    if (bytes <= kMostInHeap) {
        data_ = static_cast<unsigned char*>(mem_alloc(bytes));
        return;
    }
    reserved_ = bytes <= kFirstReservation ? kFirstReservation : kLastReservation;
    void* space = reserve(reserved_);
    if (space == nullptr) { // a process short of address space still gets what it asked for
        reserved_ = bytes;
        space = reserve(bytes);
    }
    if (space == nullptr) throw CXMemException();
    if (!commit(space, bytes)) {
        VirtualFree(space, 0, MEM_RELEASE);
        throw CXMemException();
    }
    data_ = static_cast<unsigned char*>(space);
}

BlockStorage::~BlockStorage() {
    if (reserved_ != 0) {
        VirtualFree(data_, 0, MEM_RELEASE);
    } else {
        mem_free(data_);
    }
}

void BlockStorage::grow(std::size_t bytes, std::size_t used) {
    if (bytes <= reserved_) {
        if (!commit(data_, bytes)) throw CXMemException();
        return;
    }
    BlockStorage larger(bytes);
    if (used != 0) std::memcpy(larger.data_, data_, used);
    swap(larger);
}

} // namespace qzr
