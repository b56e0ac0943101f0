#include "param/memory/name_list.h"

#include "core/scope_exit.h"
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
    NameEntry& entry = slots_.push();
    ScopeExit undo([this] { slots_.shrink(slots_.size() - 1); });
    entry.hash = hash;
    entry.name = names_.add(name);
    ScopeExit undo_name([&] { names_.remove(entry.name); });
    if (index_.active() || slots_.size() > kMostScanned) index_.add_last(slots_);
    undo_name.dismiss();
    undo.dismiss();
    return entry;
}

bool NameList::remove(unsigned hash, const char* given, PackedValue& value) {
    const unsigned at = place_of(hash);
    if (at == NameIndex::kNone) return false;
    // An orphan of this spelling is older than the entry found, so it is the first in the list.
    const bool orphan_left = drop_orphan(given);
    NameEntry& found = slots_[at];
    if (!orphan_left && _stricmp(found.name, given) == 0) {
        make_hole(at);
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
    make_hole(*orphan);
    orphans_.erase(orphan);
    return true;
}

void NameList::make_hole(unsigned at) noexcept {
    NameEntry& entry = slots_[at];
    entry.state = NameEntry::State::kHole;
    ++holes_;
    if (walks_ == nullptr) return names_.remove(entry.name);
    entry.hash = last_kept_; // links the holes whose names are still there
    last_kept_ = at;
}

void NameList::remove_kept_names() noexcept {
    while (last_kept_ != NameIndex::kNone) {
        const NameEntry& hole = slots_[last_kept_];
        names_.remove(hole.name);
        last_kept_ = hole.hash;
    }
}

// Half of the places at most are holes, so that a walk and the memory stay in proportion to the names.
void NameList::tidy() noexcept {
    if (walks_ != nullptr || holes_ <= kFewHoles || holes_ <= slots_.size() / 2) return;
    close_holes();
    if (slots_.size() <= kMostScanned)
        index_.clear();
    else
        index_.rebuild(slots_);
}

// Moves the entries up. Their names stay where they are, since callers may hold them.
void NameList::close_holes() noexcept {
    orphans_.clear();
    unsigned to = 0;
    for (unsigned at = 0; at < slots_.size(); ++at) {
        if (slots_[at].state == NameEntry::State::kHole) continue;
        NameEntry& moved = slots_[to];
        moved = slots_[at];
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
        departed_.adopt(names_);
    else
        names_.clear();
    last_kept_ = NameIndex::kNone;
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
    remove_kept_names();
    tidy();
}

CTEnum<const char*>* NameList::enumerate() { return new (std::nothrow) Walk(*this); }

} // namespace qzr
