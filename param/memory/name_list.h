// The names of a node's values, or of its children: in the order in which they came, and found by hash.
#pragma once

#include "param/memory/name_index.h"
#include "param/memory/name_pool.h"
#include "param/memory/name_slots.h"
#include "qzunknown.h"

#include <string_view>

namespace qzr {

// Names are matched by hash alone, but an entry leaves the list by its spelling: removing one of two names
// that share a hash through the other spelling leaves an orphan behind, a name that is listed and not found.
// Callers see this.
//
// The list is counted, like an interface: its node and its enumerators share it. A name stays where it is
// until its entry goes, since it may have been handed out; while an enumerator lives, longer: until that one
// goes too.
class NameList {
public:
    // Starts with one reference. Throws CXMemException.
    static NameList* make();
    void AddRef() noexcept { ++references_; }
    void Release() noexcept;

    // The entry is good until the list changes; null when there is none.
    NameEntry* find(unsigned hash) noexcept {
        const unsigned at = place_of(hash);
        return at != NameIndex::kNone ? &slots_[at] : nullptr;
    }

    // A new entry at the end, with an empty value. The hash must not be there yet. Throws CXMemException, and
    // nothing has changed then.
    NameEntry& append(std::string_view name, unsigned hash);

    // Takes the entry of this hash out and hands out its value, which is the caller's now; false when there
    // is none. From the list goes the first name that equals the given one without regard to case: that of
    // the entry, or of an orphan. Otherwise the entry becomes an orphan itself. Throws CXMemException, and
    // nothing has changed then.
    bool remove(unsigned hash, const char* given, PackedValue& value);

    // The same for a name that is not found: an orphan of that spelling leaves the list.
    void remove_orphan(const char* given) noexcept;

    // Empties the list and hands out the entries, whose values are the caller's. Their names are gone.
    NameSlots take_all() noexcept;

    // An enumerator with one reference for the caller; null when there is no memory.
    CTEnum<const char*>* enumerate();

private:
    class Walk;

    // Up to here a search runs along the list, from there on it asks the index. Most nodes stay this small.
    static constexpr unsigned kMostScanned = 8;

    // Fewer holes are not worth tidying up.
    static constexpr unsigned kFewHoles = 16;

    NameList() = default;
    ~NameList() = default; // empty: its node has taken all entries out

    unsigned place_of(unsigned hash) const noexcept {
        if (index_.active()) return index_.find(hash, slots_);
        for (unsigned at = 0; at < slots_.size(); ++at)
            if (slots_[at].found_by(hash)) return at;
        return NameIndex::kNone;
    }

    bool drop_orphan(const char* given) noexcept;
    void make_hole(unsigned at) noexcept;
    void remove_kept_names() noexcept;
    void tidy() noexcept;
    void close_holes() noexcept;
    void add_walk(Walk* walk) noexcept;
    void remove_walk(Walk* walk) noexcept;

    unsigned references_ = 1;
    unsigned holes_ = 0;                    // of slots_
    unsigned last_kept_ = NameIndex::kNone; // of the holes whose names wait for the last enumerator
    NameSlots slots_;
    NameIndex index_;
    NamePool names_;
    Vector<unsigned> orphans_; // their places in slots_, in list order
    NamePool departed_;        // the names of taken entries; only while walks_ is not null
    Walk* walks_ = nullptr;    // the living enumerators
};

} // namespace qzr
