// Where the names of a list are kept.
#pragma once

#include <cstddef>
#include <string_view>
#include <utility>

namespace qzr {

// Names lie side by side in small blocks and never move. A block goes with the last of its names, so that one
// that stays behind keeps a few hundred bytes at most, however many were stored with it.
class NamePool {
public:
    NamePool() noexcept = default;
    NamePool(const NamePool&) = delete;
    NamePool& operator=(const NamePool&) = delete;
    ~NamePool() { clear(); }

    // A copy with a terminator. Throws CXMemException.
    const char* add(std::string_view name);

    // Gives up a name that add() handed out.
    void remove(const char* name) noexcept;

    // Keeps the names of another pool as long as its own.
    void adopt(NamePool& other) noexcept;

    void clear() noexcept;

private:
    struct Block {
        Block* newer;
        Block* older;
        unsigned size;  // with this head
        unsigned names; // that are still wanted
    };

    void add_block(std::size_t bytes);
    void free_block(Block* block) noexcept;

    Block* newest_ = nullptr;
    char* free_ = nullptr; // in the newest block
    std::size_t room_ = 0; // bytes left there
};

} // namespace qzr
