// The names of a node's values, or of its children: in the order in which they came, and found by hash.
#pragma once

#include "core/hash_index.h"
#include "qzunknown.h"

#include <string_view>

namespace qzr {

// An entry of a list: one block with the links, the payload of a derived type, and the name behind it. The
// links of HashLink hold the order. Payloads are plain data and start out as zero bytes.
struct NameEntry : HashLink {
    unsigned text_size : 31 = 0; // with the terminator
    unsigned orphan : 1 = 0;

    NameEntry* following() const noexcept { return static_cast<NameEntry*>(next); }
    NameEntry* preceding() const noexcept { return static_cast<NameEntry*>(prev); }
};
static_assert(sizeof(NameEntry) == 24, "every byte here is paid once per value");

// Names are matched by hash alone, but an entry leaves the list by its spelling: removing one of two names
// that share a hash through the other spelling leaves an orphan behind, a name that is listed and not found.
// Callers see this.
//
// The list is counted, like an interface: its node and its enumerators share it. While an enumerator lives,
// entries that leave are kept aside, since their names may have been handed out.
class NameList {
public:
    // Starts with one reference. Throws CXMemException.
    static NameList* make(unsigned entry_size);
    void AddRef() noexcept { ++references_; }
    void Release() noexcept;

    NameEntry* find(unsigned hash) const noexcept {
        if (index_.active()) return static_cast<NameEntry*>(index_.find(hash));
        NameEntry* entry = first_;
        while (entry != nullptr && (entry->hash != hash || entry->orphan))
            entry = entry->following();
        return entry;
    }
    const char* text(const NameEntry* entry) const noexcept {
        return reinterpret_cast<const char*>(entry) + entry_size_;
    }

    // A new entry at the end; Entry is the one type that this list is for. The hash must not be there yet.
    // Throws CXMemException.
    template <class Entry>
    Entry* append(std::string_view name, unsigned hash) {
        auto* const entry = new (make_block(name)) Entry();
        link(entry, name.size() + 1, hash);
        return entry;
    }

    // Takes a found entry out, and from the list the first name that equals the given one without regard to
    // case. Returns the entry of that name, which the caller passes to discard(); null when no name is equal.
    // It may be an orphan: found then becomes one, and the caller empties its payload. Throws CXMemException,
    // and nothing has changed then.
    NameEntry* remove(NameEntry* found, const char* given);

    // The same for a name that is not found: an orphan of that spelling leaves the list.
    NameEntry* remove_orphan(const char* given) noexcept;

    // Takes everything out and returns the entries, chained by following(). Each is to be passed to
    // discard().
    NameEntry* take_all() noexcept;

    // Frees an entry that has left the list, or keeps it for the enumerators. The payload must be empty; null
    // is fine.
    void discard(NameEntry* entry) noexcept;

    // An enumerator with one reference for the caller; null when there is no memory.
    CTEnum<const char*>* enumerate();

private:
    class Walk;

    // Up to here a search runs along the list, from there on it asks the index. Most nodes stay this small
    // and pay for neither buckets nor index.
    static constexpr unsigned kMostScanned = 8;

    explicit NameList(unsigned entry_size) : entry_size_(entry_size) {}
    ~NameList() = default; // empty: its node has taken all entries out

    void* make_block(std::string_view name);
    void link(NameEntry* entry, std::size_t text_size, unsigned hash);
    void add_to_index(NameEntry* entry);
    void unlink(NameEntry* entry) noexcept;
    void free_entry(NameEntry* entry) noexcept;
    void add_walk(Walk* walk) noexcept;
    void remove_walk(Walk* walk) noexcept;

    unsigned references_ = 1;
    const unsigned entry_size_; // without the text
    unsigned size_ = 0;         // listed names, orphans included
    NameEntry* first_ = nullptr;
    NameEntry* last_ = nullptr;
    HashIndex index_;
    Vector<NameEntry*> orphans_;     // those of one spelling in list order
    NameEntry* discarded_ = nullptr; // chained by following(); only while walks_ is not null
    Walk* walks_ = nullptr;          // the living enumerators
};

} // namespace qzr
