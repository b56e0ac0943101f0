// Where the names of a list are kept.
#pragma once

#include <cstddef>
#include <string_view>
#include <utility>

namespace qzr {

// Names lie side by side in a few blocks, each twice as large as the one before up to a limit, and stay in
// place until all of them go.
class NamePool {
public:
    NamePool() noexcept = default;
    NamePool(NamePool&& other) noexcept { swap(other); }
    ~NamePool() { clear(); }
    NamePool& operator=(const NamePool&) = delete;

    // A copy with a terminator. Throws CXMemException.
    const char* add(std::string_view name);

    // Room in one block for names of so many bytes, terminators included, in a pool that is empty. Throws
    // CXMemException.
    void reserve(std::size_t bytes) { add_block(bytes); }

    // Keeps the names of another pool as long as its own.
    void adopt(NamePool&& other) noexcept;

    void clear() noexcept;

    void swap(NamePool& other) noexcept {
        std::swap(newest_, other.newest_);
        std::swap(free_, other.free_);
        std::swap(room_, other.room_);
    }

private:
    struct Block {
        Block* next;
        std::size_t size; // with this head
    };

    void add_block(std::size_t bytes);

    Block* newest_ = nullptr;
    char* free_ = nullptr; // in the newest block
    std::size_t room_ = 0; // bytes left there
};

} // namespace qzr
