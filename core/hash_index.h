// An index from hashes to nodes, for maps that have outgrown their buckets.
#pragma once

#include "core/allocator.h"

#include <utility>

namespace qzr {

// What the nodes of a HashMap derive from.
struct HashLink {
    HashLink* next = nullptr;
    HashLink* prev = nullptr;
    unsigned hash = 0;
};

// Open addressing with linear probing over two arrays, so that a probe runs along the keys alone. Name hashes
// lie close together, hence they are scattered first. Twelve bytes a slot, at most seven of eight slots in
// use.
class HashIndex {
public:
    // Where a node stands among those of the same hash; the newest is found.
    enum class Rank { newest, oldest };

    HashIndex() noexcept = default;
    HashIndex(HashIndex&& other) noexcept { swap(other); }
    HashIndex& operator=(HashIndex&& other) noexcept {
        HashIndex moved(std::move(other));
        swap(moved);
        return *this;
    }
    ~HashIndex() {
        mem_free(keys_);
        mem_free(links_);
    }

    bool active() const noexcept { return capacity_ != 0; }

    HashLink* find(unsigned hash) const noexcept {
        const unsigned key = key_of(hash);
        for (unsigned i = home(key); keys_[i] != kEmpty; i = after(i))
            if (keys_[i] == key && links_[i]->hash == hash) return links_[i];
        return nullptr;
    }

    // Throws CXMemException, and nothing is changed then.
    void insert(HashLink* link, Rank rank) {
        if (size_ + 1 > capacity_ - capacity_ / 8) reserve(capacity_ + capacity_ / 2);
        place(key_of(link->hash), link, rank);
    }

    // The link must be in the index.
    void remove(HashLink* link) noexcept {
        unsigned gap = home(key_of(link->hash));
        while (links_[gap] != link)
            gap = after(gap);
        close_gap(gap);
        --size_;
    }

    // Makes room for slots slots, moving what is there. Throws CXMemException.
    void reserve(unsigned slots) {
        HashIndex larger;
        larger.keys_ = static_cast<unsigned*>(mem_alloc(std::size_t{slots} * sizeof(unsigned)));
        larger.links_ = static_cast<HashLink**>(mem_alloc(std::size_t{slots} * sizeof(HashLink*)));
        larger.capacity_ = slots;
        // From an empty slot on, once around: so that no run of equal hashes is taken in the middle.
        unsigned i = 0;
        while (i < capacity_ && keys_[i] != kEmpty)
            ++i;
        for (unsigned n = 0; n < capacity_; ++n, i = after(i))
            if (keys_[i] != kEmpty) larger.place(keys_[i], links_[i], Rank::oldest);
        swap(larger);
    }

private:
    static constexpr unsigned kEmpty = 0;

    // Zero marks an empty slot, so hash 0 shares its key with hash 1; the node tells them apart.
    static constexpr unsigned key_of(unsigned hash) noexcept { return hash != kEmpty ? hash : 1; }

    unsigned home(unsigned key) const noexcept {
        const unsigned scattered = (key ^ (key >> 16)) * 0x9E3779B1u;
        return static_cast<unsigned>(static_cast<unsigned long long>(scattered) * capacity_ >> 32);
    }

    unsigned after(unsigned slot) const noexcept { return slot + 1 < capacity_ ? slot + 1 : 0; }

    // Looks at no node whose key differs: they lie all over the memory.
    void place(unsigned key, HashLink* link, Rank rank) noexcept {
        unsigned i = home(key);
        for (; keys_[i] != kEmpty; i = after(i))
            if (rank == Rank::newest && keys_[i] == key && links_[i]->hash == link->hash)
                std::swap(links_[i], link);
        keys_[i] = key;
        links_[i] = link;
        ++size_;
    }

    // Moves up what would not be found past an empty slot.
    void close_gap(unsigned gap) noexcept {
        for (unsigned i = after(gap); keys_[i] != kEmpty; i = after(i)) {
            const unsigned from_home = distance(home(keys_[i]), i);
            if (from_home < distance(gap, i)) continue;
            keys_[gap] = keys_[i];
            links_[gap] = links_[i];
            gap = i;
        }
        keys_[gap] = kEmpty;
        links_[gap] = nullptr;
    }

    unsigned distance(unsigned from, unsigned to) const noexcept {
        return to >= from ? to - from : to + capacity_ - from;
    }

    void swap(HashIndex& other) noexcept {
        std::swap(keys_, other.keys_);
        std::swap(links_, other.links_);
        std::swap(capacity_, other.capacity_);
        std::swap(size_, other.size_);
    }

    unsigned* keys_ = nullptr;
    HashLink** links_ = nullptr;
    unsigned capacity_ = 0;
    unsigned size_ = 0;
};

} // namespace qzr
