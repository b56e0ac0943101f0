// The library's map of names. Entries are found by their 32-bit hash alone; the names are never compared.
#pragma once

#include "core/allocator.h"
#include "core/hash_index.h"

#include <utility>

namespace qzr {

// Nodes derive from HashLink and belong to whoever made them; the map only links them. Buckets is fixed, and
// the order of a walk (bucket by bucket, newest first within one) is visible to callers. From kIndexFrom
// entries on an index beside the buckets keeps finding, inserting and removing at a constant cost.
template <class Node, unsigned Buckets>
class HashMap {
public:
    static constexpr unsigned kIndexFrom = 256;

    HashMap() noexcept = default;
    // The nodes must have been taken before.
    ~HashMap() { mem_free(buckets_); }
    HashMap(const HashMap&) = delete;
    HashMap& operator=(const HashMap&) = delete;

    // The newest node with this hash, or null.
    Node* find(unsigned hash) const noexcept {
        if (index_.active()) return static_cast<Node*>(index_.find(hash));
        HashLink* link = bucket_head(hash % Buckets);
        while (link != nullptr && link->hash != hash)
            link = link->next;
        return static_cast<Node*>(link);
    }

    // Puts a node at the head of its bucket. A caller that wants one entry per hash looks it up first; of
    // several the newest is found. Throws CXMemException, and the map is then unchanged.
    void insert(Node* node, unsigned hash) {
        make_buckets();
        HashLink* const link = node;
        link->hash = hash;
        if (index_.active()) {
            index_.insert(link, HashIndex::Rank::newest);
        } else if (size_ + 1 >= kIndexFrom) {
            build_index(link);
        }
        HashLink*& head = buckets_[hash % Buckets];
        link->prev = nullptr;
        link->next = head;
        if (head != nullptr) head->prev = link;
        head = link;
        ++size_;
    }

    // Unlinks a node of this map.
    void remove(Node* node) noexcept {
        HashLink* const link = node;
        if (index_.active()) index_.remove(link);
        (link->prev != nullptr ? link->prev->next : buckets_[link->hash % Buckets]) = link->next;
        if (link->next != nullptr) link->next->prev = link->prev;
        --size_;
    }

    unsigned size() const noexcept { return size_; }

    // Walks: first() and next() to null.
    Node* first() const noexcept { return first_from(0); }
    Node* next(const Node* node) const noexcept {
        const HashLink* const link = node;
        if (link->next != nullptr) return static_cast<Node*>(link->next);
        return first_from(link->hash % Buckets + 1);
    }

    // The newest node of a bucket below Buckets, or null.
    Node* bucket_head(unsigned bucket) const noexcept {
        return mark_ == kInitialised ? static_cast<Node*>(buckets_[bucket]) : nullptr;
    }

    // Empties the map first and then hands every node to the action, in the order of a walk; the action may
    // use the map again.
    template <class Action>
    void take_all(Action action) {
        HashLink* taken = unlink_all();
        while (taken != nullptr) {
            HashLink* const link = taken;
            taken = link->next;
            action(static_cast<Node*>(link));
        }
    }

    // Set for good when the map's owner is being destroyed.
    bool closing() const noexcept { return closing_; }
    void set_closing() noexcept { closing_ = true; }

private:
    static constexpr unsigned kInitialised = 6502; // the mark of a map that has its buckets

    void make_buckets() {
        if (mark_ == kInitialised) return;
        buckets_ = static_cast<HashLink**>(mem_alloc(Buckets * sizeof(HashLink*)));
        mark_ = kInitialised;
    }

    Node* first_from(unsigned bucket) const noexcept {
        if (mark_ != kInitialised) return nullptr;
        while (bucket < Buckets && buckets_[bucket] == nullptr)
            ++bucket;
        return bucket < Buckets ? static_cast<Node*>(buckets_[bucket]) : nullptr;
    }

    // Chains hold the newest first, and so does the index: added is newer than all of them.
    void build_index(HashLink* added) {
        HashIndex index;
        index.reserve(2 * kIndexFrom);
        index.insert(added, HashIndex::Rank::newest);
        for (Node* node = first(); node != nullptr; node = next(node))
            index.insert(node, HashIndex::Rank::oldest);
        index_ = std::move(index);
    }

    // All nodes as one chain by next, in the order of a walk; the map is empty afterwards.
    HashLink* unlink_all() noexcept {
        HashLink* all = nullptr;
        HashLink** tail = &all;
        for (unsigned bucket = 0; size_ != 0 && bucket < Buckets; ++bucket) {
            *tail = std::exchange(buckets_[bucket], nullptr);
            for (; *tail != nullptr; --size_)
                tail = &(*tail)->next;
        }
        index_ = HashIndex();
        return all;
    }

    HashLink** buckets_ = nullptr;
    unsigned size_ = 0;
    unsigned mark_ = 0;
    bool closing_ = false;
    HashIndex index_;
};

} // namespace qzr
