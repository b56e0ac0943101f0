#include "param/memory/name_list.h"

#include "qzref.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace qzr {

// Remembers where it is; what comes next is decided when it is asked for.
class NameList::Walk final : public CQZUnknownImpl<CTEnum<const char*>> {
public:
    explicit Walk(NameList& list) : list_(CQZRef<NameList>::Share(&list)) { list.add_walk(this); }
    ~Walk() override { list_->remove_walk(this); }

    int Next(int count, const char** items, unsigned* fetched) override {
        unsigned handed_out = 0;
        if (items != nullptr) {
            for (; count > 0 && find_next(); --count)
                items[handed_out++] = list_->slots_[next_++].name;
        }
        if (fetched != nullptr) *fetched = handed_out;
        return handed_out != 0 ? 1 : 0;
    }

    int Skip(unsigned count) override {
        for (; count > 0 && find_next(); --count)
            ++next_;
        return 1;
    }

    void Reset() override { next_ = 0; }

private:
    friend class NameList;

    bool find_next() noexcept {
        const NameSlots& slots = list_->slots_;
        while (next_ < slots.size() && slots[next_].state == NameEntry::State::kHole)
            ++next_;
        return next_ < slots.size();
    }

    CQZRef<NameList> list_;
    unsigned next_ = 0; // what was at the places before has been handed out
    Walk* next_walk_ = nullptr;
};

NameList* NameList::make() {
    void* const block = block_alloc(sizeof(NameList));
    return new (block) NameList;
}

void NameList::Release() noexcept {
    if (--references_ != 0) return;
    this->~NameList();
    block_free(this, sizeof(NameList));
}

NameEntry& NameList::append(std::string_view name, unsigned hash) {
    const char* const kept = names_.add(name);
    NameEntry& entry = slots_.push();
    entry.hash = hash;
    entry.name = kept;
    try {
        if (index_.active() || slots_.size() > kMostScanned) index_.add_last(slots_);
    } catch (...) {
        slots_.shrink(slots_.size() - 1);
        throw;
    }
    return entry;
}

bool NameList::remove(unsigned hash, const char* given, PackedValue& value) {
    const unsigned at = place_of(hash);
    if (at == NameIndex::kNone) return false;
    // An orphan of this spelling is older than the entry found, so it is the first in the list.
    const bool orphan_left = drop_orphan(given);
    NameEntry& found = slots_[at];
    if (!orphan_left && _stricmp(found.name, given) == 0) {
        make_hole(found);
    } else {
        orphans_.push_back(at); // has room when an orphan has just left
        found.state = NameEntry::State::kOrphan;
    }
    value = std::exchange(found.value, PackedValue());
    tidy();
    return true;
}

void NameList::remove_orphan(const char* given) noexcept {
    if (drop_orphan(given)) tidy();
}

bool NameList::drop_orphan(const char* given) noexcept {
    const auto orphan = std::find_if(orphans_.begin(), orphans_.end(),
                                     [&](unsigned at) { return _stricmp(slots_[at].name, given) == 0; });
    if (orphan == orphans_.end()) return false;
    make_hole(slots_[*orphan]);
    orphans_.erase(orphan);
    return true;
}

void NameList::make_hole(NameEntry& entry) noexcept {
    entry.state = NameEntry::State::kHole;
    ++holes_;
}

// Half of the places at most are holes, so that a walk and the memory stay in proportion to the names.
void NameList::tidy() noexcept {
    if (walks_ != nullptr || holes_ <= kFewHoles || holes_ <= slots_.size() / 2) return;
    NamePool names;
    try {
        names.reserve(name_bytes());
    } catch (const CXMemException&) {
        return; // there is always a next time
    }
    close_holes(names);
    names_.swap(names);
    if (slots_.size() <= kMostScanned)
        index_.clear();
    else
        index_.rebuild(slots_);
}

std::size_t NameList::name_bytes() const noexcept {
    std::size_t bytes = 0;
    for (unsigned at = 0; at < slots_.size(); ++at)
        if (slots_[at].state != NameEntry::State::kHole) bytes += std::strlen(slots_[at].name) + 1;
    return bytes;
}

// Moves the entries up, and their names to a pool that has room for them.
void NameList::close_holes(NamePool& names) noexcept {
    orphans_.clear();
    unsigned to = 0;
    for (unsigned at = 0; at < slots_.size(); ++at) {
        if (slots_[at].state == NameEntry::State::kHole) continue;
        NameEntry& moved = slots_[to];
        moved = slots_[at];
        moved.name = names.add(moved.name);
        if (moved.state == NameEntry::State::kOrphan) orphans_.push_back(to); // they are as many as before
        ++to;
    }
    slots_.shrink(to);
    holes_ = 0;
}

NameSlots NameList::take_all() noexcept {
    for (Walk* walk = walks_; walk != nullptr; walk = walk->next_walk_)
        walk->Reset();
    if (walks_ != nullptr)
        departed_.adopt(std::move(names_));
    else
        names_.clear();
    index_.clear();
    orphans_.clear();
    holes_ = 0;
    return std::move(slots_);
}

void NameList::add_walk(Walk* walk) noexcept {
    walk->next_walk_ = walks_;
    walks_ = walk;
}

void NameList::remove_walk(Walk* walk) noexcept {
    Walk** link = &walks_;
    while (*link != walk)
        link = &(*link)->next_walk_;
    *link = walk->next_walk_;
    if (walks_ != nullptr) return;
    departed_.clear();
    tidy();
}

CTEnum<const char*>* NameList::enumerate() { return new (std::nothrow) Walk(*this); }

} // namespace qzr
