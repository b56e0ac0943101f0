// Where the bytes of a memory block live: in the library's heap while they are few, in address space reserved
// ahead once they are many, so that growing a large block copies nothing.
#pragma once

#include <cstddef>
#include <utility>

namespace qzr {

class BlockStorage {
public:
    BlockStorage() noexcept = default;
    explicit BlockStorage(std::size_t bytes); // zeroed. Throws CXMemException
    ~BlockStorage();

    BlockStorage(const BlockStorage&) = delete;
    BlockStorage& operator=(const BlockStorage&) = delete;

    // Makes it `bytes` large, more than before. The first `used` bytes stay and the rest is zero, provided
    // that all behind the used bytes was zero before. Throws CXMemException, nothing has changed then.
    void grow(std::size_t bytes, std::size_t used);

    unsigned char* data() const noexcept { return data_; } // null when there are no bytes

    void swap(BlockStorage& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(reserved_, other.reserved_);
    }

private:
    unsigned char* data_ = nullptr;
    std::size_t reserved_ = 0; // address space that data_ begins; 0 when it is a block of the heap
};

} // namespace qzr
