#include "core/block_cache.h"

#include "core/heap.h"
#include "core/scope_exit.h"

namespace qzr {

namespace {

// Waits until `ready` answers true, for some milliseconds at most: nobody stays in a list longer, unless the
// thread was ended or put aside there.
template <class Ready>
bool wait_shortly(Ready ready) noexcept {
    constexpr int kTries = 10;
    for (int i = 0; i < kTries; ++i) {
        if (ready()) return true;
        Sleep(1);
    }
    return ready();
}

} // namespace

BlockCache::~BlockCache() {
    for (List& list : own_)
        list.clear();
    for (SharedList& shared : shared_)
        shared.list.clear();
}

bool BlockCache::List::clear() noexcept {
    const bool any = first != nullptr;
    while (first != nullptr) {
        FreeBlock* const block = first;
        first = block->next;
        CHeap::free_block(block);
    }
    count = 0;
    return any;
}

bool BlockCache::give_back() noexcept {
    const bool own = give_back_own();
    const bool shared = give_back_shared();
    return own || shared;
}

// Another thread than the home one first waits until that one has either seen that its lists are taken or has
// shown that it is at work on them. Not every system flushes the stores of other threads when asked to; after
// a millisecond they are through by themselves.
bool BlockCache::give_back_own() noexcept {
    if (this_thread() != home_) {
        giving_back_.store(true);
        FlushProcessWriteBuffers();
        Sleep(1);
    }
    const ScopeExit done([this]() noexcept { giving_back_.store(false, std::memory_order_release); });
    if (this_thread() != home_ &&
        !wait_shortly([this]() noexcept { return !at_work_.load(std::memory_order_acquire); }))
        return false;
    bool any = false;
    for (List& list : own_)
        any |= list.clear();
    return any;
}

bool BlockCache::give_back_shared() noexcept {
    bool any = false;
    for (SharedList& shared : shared_) {
        if (!wait_shortly([&]() noexcept { return !shared.busy.test_and_set(std::memory_order_acquire); }))
            continue;
        any |= shared.list.clear();
        shared.busy.clear(std::memory_order_release);
    }
    return any;
}

} // namespace qzr
