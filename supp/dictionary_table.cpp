#include "supp/dictionary_table.h"

#include "core/allocator.h"

#include <memory>

namespace qzr {

// The wide texts come from the default heap one by one, as any thread may make them.
DictionaryTable::~DictionaryTable() {
    for (unsigned i = 0; i < groups_count_; ++i)
        for (const WideText& text : groups_[i].wide)
            mem_free(text.load(std::memory_order_relaxed));
    mem_free(memory_);
}

void DictionaryTable::make_room() {
    constexpr unsigned kSmallest = 16;
    if (size_ < groups_count_ * (kPlaces - 1)) return;
    const unsigned count = groups_count_ == 0 ? kSmallest : groups_count_ / 2 * 3;
    std::size_t size = std::size_t{count} * sizeof(Group) + alignof(Group);
    void* const memory = mem_alloc(size);
    void* start = memory;
    Group* const from = groups_;
    Group* const end = groups_ + groups_count_;
    void* const old_memory = memory_;
    groups_ =
        static_cast<Group*>(std::align(alignof(Group), std::size_t{count} * sizeof(Group), start, size));
    std::uninitialized_default_construct_n(groups_, count);
    memory_ = memory;
    groups_count_ = count;
    size_ = 0;
    for (const Group* group = from; group != end; ++group)
        for (unsigned place = 0; place < kPlaces && group->pairs[place] != 0; ++place)
            add(group->hashes[place], group->pairs[place])
                .wide->store(group->wide[place].load(std::memory_order_relaxed), std::memory_order_relaxed);
    mem_free(old_memory);
}

DictionaryEntry DictionaryTable::add(unsigned hash, unsigned pair) noexcept {
    unsigned i = home(hash);
    while (groups_[i].pairs[kPlaces - 1] != 0)
        i = after(i);
    Group& group = groups_[i];
    unsigned place = 0;
    while (group.pairs[place] != 0)
        ++place;
    group.hashes[place] = hash;
    group.pairs[place] = pair;
    ++size_;
    return {pair, &group.wide[place]};
}

} // namespace qzr
