#include "param/memory/name_pool.h"

#include "core/allocator.h"
#include "core/move_bytes.h"
#include "qzexception.h"

#include <algorithm>
#include <limits>

namespace qzr {

namespace {

// In front of each name a byte tells how far behind the beginning of its block it is.
constexpr std::size_t kFirstBlock = 80;
constexpr std::size_t kLargestBlock = 256;

unsigned char& distance(char* name) noexcept { return reinterpret_cast<unsigned char&>(name[-1]); }

} // namespace

const char* NamePool::add(std::string_view name) {
    if (name.size() > std::numeric_limits<int>::max()) throw CXMemException();
    const std::size_t size = name.size() + 2;
    if (size > room_) add_block(size);
    char* const text = free_ + 1;
    distance(text) = static_cast<unsigned char>(text - reinterpret_cast<char*>(newest_));
    move_bytes(text, name.data(), name.size());
    text[name.size()] = '\0';
    free_ += size;
    room_ -= size;
    ++newest_->names;
    return text;
}

// What is left of the block before is given up: at most a name's length in a block. A long name has a block
// for itself.
void NamePool::add_block(std::size_t bytes) {
    const std::size_t usual =
        newest_ != nullptr ? std::min(std::size_t{2} * newest_->size, kLargestBlock) : kFirstBlock;
    const std::size_t size = std::max(usual, bytes + sizeof(Block));
    Block* const block = new (block_alloc(size)) Block{nullptr, newest_, static_cast<unsigned>(size), 0};
    if (newest_ != nullptr) newest_->newer = block;
    newest_ = block;
    free_ = reinterpret_cast<char*>(block + 1);
    room_ = size - sizeof(Block);
}

void NamePool::remove(const char* name) noexcept {
    char* const text = const_cast<char*>(name);
    Block* const block = reinterpret_cast<Block*>(text - distance(text));
    if (--block->names == 0) free_block(block);
}

void NamePool::free_block(Block* block) noexcept {
    if (block->older != nullptr) block->older->newer = block->newer;
    if (block->newer != nullptr) {
        block->newer->older = block->older;
    } else {
        newest_ = block->older;
        free_ = nullptr;
        room_ = 0;
    }
    block_free(block, block->size);
}

// Where the other pool had room is not asked for: this one goes on in its own newest block.
void NamePool::adopt(NamePool& other) noexcept {
    Block* oldest = std::exchange(other.newest_, nullptr);
    other.clear();
    if (oldest == nullptr) return;
    if (newest_ == nullptr) {
        newest_ = oldest;
        return;
    }
    Block* const first = oldest;
    while (oldest->older != nullptr)
        oldest = oldest->older;
    oldest->older = newest_->older;
    if (newest_->older != nullptr) newest_->older->newer = oldest;
    first->newer = newest_;
    newest_->older = first;
}

void NamePool::clear() noexcept {
    while (newest_ != nullptr) {
        Block* const block = newest_;
        newest_ = block->older;
        block_free(block, block->size);
    }
    free_ = nullptr;
    room_ = 0;
}

} // namespace qzr
