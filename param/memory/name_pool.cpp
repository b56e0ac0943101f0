#include "param/memory/name_pool.h"

#include "core/allocator.h"
#include "core/move_bytes.h"

#include <algorithm>

namespace qzr {

namespace {

constexpr std::size_t kFirstBlock = 64;
constexpr std::size_t kLargestBlock = 16 * 1024;

} // namespace

const char* NamePool::add(std::string_view name) {
    const std::size_t size = name.size() + 1;
    if (size > room_) add_block(size);
    char* const text = free_;
    move_bytes(text, name.data(), name.size());
    text[name.size()] = '\0';
    free_ += size;
    room_ -= size;
    return text;
}

// What is left of the block before is given up: at most a name's length in a block.
void NamePool::add_block(std::size_t bytes) {
    const std::size_t usual = newest_ != nullptr ? std::min(2 * newest_->size, kLargestBlock) : kFirstBlock;
    const std::size_t size = std::max(usual, bytes + sizeof(Block));
    newest_ = new (block_alloc(size)) Block{newest_, size};
    free_ = reinterpret_cast<char*>(newest_ + 1);
    room_ = size - sizeof(Block);
}

void NamePool::adopt(NamePool&& other) noexcept {
    if (other.newest_ == nullptr) return;
    Block* oldest = other.newest_;
    while (oldest->next != nullptr)
        oldest = oldest->next;
    if (newest_ != nullptr) {
        oldest->next = std::exchange(newest_->next, other.newest_);
    } else {
        newest_ = other.newest_; // without its room, which is not asked for
    }
    other.newest_ = nullptr;
    other.clear();
}

void NamePool::clear() noexcept {
    while (newest_ != nullptr) {
        Block* const block = newest_;
        newest_ = block->next;
        block_free(block, block->size);
    }
    free_ = nullptr;
    room_ = 0;
}

} // namespace qzr
