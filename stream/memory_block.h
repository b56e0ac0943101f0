// The growing block behind a memory stream.
#pragma once

#include "stream/block_storage.h"

#include <cstdint>
#include <cstring>

namespace qzr {

// All bytes behind the used ones are zero, so that a write beyond the end leaves a gap of zeroes.
class MemoryBlock {
public:
    unsigned size() const noexcept { return size_; } // bytes in use
    unsigned char* data() const noexcept { return storage_.data(); }

    // Stores bytes at a position, growing the block and its size as needed. The bytes may be the block's own.
    // Throws CXMemException, also for an end past 4 GiB - 1; nothing has changed then.
    void store(unsigned position, const void* bytes, unsigned count) {
        const std::uint64_t end = std::uint64_t{position} + count;
        if (end > capacity_) bytes = make_room(end, bytes);
        if (count != 0) std::memmove(storage_.data() + position, bytes, count);
        if (end > size_) size_ = static_cast<unsigned>(end);
    }

    // Takes the place of the block by one of exactly length bytes, copied from data (which may be the block's
    // own) or zero when data is null. The length becomes the growth step, too. Throws CXMemException, nothing
    // has changed then.
    void replace(const void* data, unsigned length);

private:
    const void* make_room(std::uint64_t required, const void* source);

    BlockStorage storage_;
    unsigned capacity_ = 0;
    unsigned size_ = 0;
    unsigned step_ = 4096;
};

} // namespace qzr
