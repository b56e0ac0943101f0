#include "param/name_list.h"

#include "qzref.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace qzr {

// Remembers the name handed out last; what comes next is decided when it is asked for.
class NameList::Walk final : public CQZUnknownImpl<CTEnum<const char*>> {
public:
    explicit Walk(NameList& list) : list_(CQZRef<NameList>::Share(&list)) { list.add_walk(this); }
    ~Walk() override { list_->remove_walk(this); }

    int Next(int count, const char** items, unsigned* fetched) override {
        unsigned handed_out = 0;
        if (items != nullptr) {
            for (; count > 0 && step(); --count)
                items[handed_out++] = list_->text(current_);
        }
        if (fetched != nullptr) *fetched = handed_out;
        return handed_out != 0 ? 1 : 0;
    }

    int Skip(unsigned count) override {
        while (count > 0 && step())
            --count;
        return 1;
    }

    void Reset() override { current_ = nullptr; }

private:
    friend class NameList;

    // An entry is about to leave the list.
    void forget(const NameEntry* entry) noexcept {
        if (current_ == entry) current_ = entry->preceding();
    }

    bool step() noexcept {
        NameEntry* const next = current_ != nullptr ? current_->following() : list_->first_;
        if (next == nullptr) return false;
        current_ = next;
        return true;
    }

    CQZRef<NameList> list_;
    NameEntry* current_ = nullptr; // null before the first
    Walk* next_walk_ = nullptr;
};

NameList* NameList::make(unsigned entry_size) {
    void* const block = block_alloc(sizeof(NameList));
    return new (block) NameList(entry_size);
}

void NameList::Release() noexcept {
    if (--references_ != 0) return;
    this->~NameList();
    block_free(this, sizeof(NameList));
}

void* NameList::make_block(std::string_view name) {
    constexpr std::size_t kMostText = 0x7FFFFFFF;
    if (name.size() >= kMostText) throw CXMemException();
    char* const block = static_cast<char*>(block_alloc(entry_size_ + name.size() + 1));
    char* const text = block + entry_size_;
    std::memcpy(text, name.data(), name.size());
    text[name.size()] = '\0';
    return block;
}

void NameList::free_entry(NameEntry* entry) noexcept { block_free(entry, entry_size_ + entry->text_size); }

void NameList::link(NameEntry* entry, std::size_t text_size, unsigned hash) {
    entry->text_size = static_cast<unsigned>(text_size) & 0x7FFFFFFF;
    entry->hash = hash;
    try {
        add_to_index(entry);
    } catch (...) {
        free_entry(entry);
        throw;
    }
    entry->prev = last_;
    if (last_ != nullptr)
        last_->next = entry;
    else
        first_ = entry;
    last_ = entry;
    ++size_;
}

void NameList::add_to_index(NameEntry* entry) {
    if (index_.active()) {
        index_.insert(entry, HashIndex::Rank::newest);
    } else if (size_ >= kMostScanned) {
        HashIndex index;
        index.reserve(2 * kMostScanned);
        index.insert(entry, HashIndex::Rank::newest);
        for (NameEntry* listed = first_; listed != nullptr; listed = listed->following())
            if (!listed->orphan) index.insert(listed, HashIndex::Rank::newest);
        index_ = std::move(index);
    }
}

NameEntry* NameList::remove(NameEntry* found, const char* given) {
    // An orphan of this spelling is older than the entry found, so it is the first in the list.
    NameEntry* leaving = remove_orphan(given);
    if (leaving == nullptr && _stricmp(text(found), given) == 0) leaving = found;

    if (leaving != found) {
        orphans_.push_back(found); // has room when an orphan has just left
        found->orphan = 1;
    } else {
        unlink(found);
    }
    if (index_.active()) index_.remove(found);
    return leaving;
}

NameEntry* NameList::remove_orphan(const char* given) noexcept {
    const auto orphan = std::find_if(orphans_.begin(), orphans_.end(), [&](const NameEntry* entry) {
        return _stricmp(text(entry), given) == 0;
    });
    if (orphan == orphans_.end()) return nullptr;
    NameEntry* const leaving = *orphan;
    orphans_.erase(orphan);
    unlink(leaving);
    return leaving;
}

void NameList::unlink(NameEntry* entry) noexcept {
    for (Walk* walk = walks_; walk != nullptr; walk = walk->next_walk_)
        walk->forget(entry);
    if (entry->prev != nullptr)
        entry->prev->next = entry->next;
    else
        first_ = entry->following();
    if (entry->next != nullptr)
        entry->next->prev = entry->prev;
    else
        last_ = entry->preceding();
    --size_;
}

NameEntry* NameList::take_all() noexcept {
    for (Walk* walk = walks_; walk != nullptr; walk = walk->next_walk_)
        walk->Reset();
    index_ = HashIndex();
    orphans_.clear();
    size_ = 0;
    last_ = nullptr;
    return std::exchange(first_, nullptr);
}

void NameList::discard(NameEntry* entry) noexcept {
    if (entry == nullptr) return;
    if (walks_ == nullptr) {
        free_entry(entry);
    } else {
        entry->next = discarded_;
        discarded_ = entry;
    }
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
    while (discarded_ != nullptr)
        free_entry(std::exchange(discarded_, discarded_->following()));
}

CTEnum<const char*>* NameList::enumerate() { return new (std::nothrow) Walk(*this); }

} // namespace qzr
