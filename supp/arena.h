// Memory for many small things that stay together until the end.
#pragma once

#include "core/allocator.h"

namespace qzr {

// Cuts pieces from large blocks of the default heap; all of it is freed with the arena.
class Arena {
public:
    Arena() noexcept = default;
    ~Arena() {
        while (blocks_ != nullptr)
            mem_free(std::exchange(blocks_, blocks_->next));
    }
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

    // n bytes with zeroes in them, aligned to eight; n is below 2^31. Throws CXMemException.
    void* take(std::size_t n) {
        const std::size_t rounded = (n + 7) & ~std::size_t{7};
        if (rounded > left_) add_block(rounded);
        left_ -= rounded;
        return std::exchange(free_, free_ + rounded);
    }

private:
    struct Block {
        Block* next;
    };
    static constexpr std::size_t kBlock = 64 * 1024;

    void add_block(std::size_t n) {
        const std::size_t size = n <= kBlock ? kBlock : n;
        auto* const block = static_cast<Block*>(mem_alloc(sizeof(Block) + size));
        block->next = blocks_;
        blocks_ = block;
        free_ = reinterpret_cast<char*>(block + 1);
        left_ = size;
    }

    Block* blocks_ = nullptr;
    char* free_ = nullptr;
    std::size_t left_ = 0;
};

} // namespace qzr
