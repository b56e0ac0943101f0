// Freed blocks kept for the next request of their size.
#pragma once

#include "core/this_thread.h"

#include <atomic>
#include <bit>
#include <cstddef>
#include <new>

namespace qzr {

// One list per size class is of the thread that made the cache alone, so it pays for no atomic instruction:
// those took a third of the time. The other one is for all, behind a flag that is only tried, never waited
// for: a thread that finds it taken goes to the heap instead. So threads do not queue here, and one that was
// ended while it held a flag blocks nobody.
//
// Only when memory runs out does another thread reach into the home thread's lists. Both sides then say what
// they are about before they look at what the other says; the home thread does it with plain stores, and the
// other one, which has the time, makes the system see to it that those have become visible.
class BlockCache {
public:
    BlockCache() noexcept : home_(this_thread()) {
        for (std::size_t i = 0; i < kClasses; ++i)
            own_[i].limit = shared_[i].list.limit = static_cast<unsigned>(kBytesPerClass / largest_of(i));
    }
    ~BlockCache();
    BlockCache(const BlockCache&) = delete;
    BlockCache& operator=(const BlockCache&) = delete;

    // The size that a block for n bytes has. Those that can be kept here later have the size of their class;
    // larger ones are rounded up in the same way, by an eighth at most, so that a text that grows bit by bit
    // turns to the heap now and then and not each time.
    static constexpr std::size_t rounded(std::size_t n) noexcept {
        if (n > kLargestRounded) return n;
        const std::size_t step = std::size_t{1} << step_bits(n);
        return (n + (n == 0) + step - 1) & ~(step - 1);
    }

    // Whether blocks for n bytes are ever kept here.
    static constexpr bool keeps(std::size_t n) noexcept { return n <= kLargest; }

    // A block for n bytes, or null.
    void* take(std::size_t n) noexcept {
        if (n > kLargest) return nullptr;
        const std::size_t c = class_of(n);
        if (this_thread() == home_)
            if (void* const own = at_home([&]() noexcept { return own_[c].take(); })) return own;
        SharedList& shared = shared_[c];
        if (shared.busy.test_and_set(std::memory_order_acquire)) return nullptr;
        void* const block = shared.list.take();
        shared.busy.clear(std::memory_order_release);
        return block;
    }

    // Keeps a block for n bytes. False when its class is full or taken: the caller frees the block then.
    bool keep(void* p, std::size_t n) noexcept {
        if (n > kLargest) return false;
        const std::size_t c = class_of(n);
        if (this_thread() == home_) return at_home([&]() noexcept { return own_[c].keep(p); });
        SharedList& shared = shared_[c];
        if (shared.busy.test_and_set(std::memory_order_acquire)) return false;
        const bool kept = shared.list.keep(p);
        shared.busy.clear(std::memory_order_release);
        return kept;
    }

    // Gives the blocks back to their heap, from any thread, while others go on; one caller at a time. A list
    // that a thread is busy with for long, or was ended in, stays as it is. @return whether there were any
    bool give_back() noexcept;

private:
    // Sizes are 16 apart up to 256, then eight to each power of two.
    static constexpr unsigned kLeastStepBits = 4;
    static constexpr std::size_t kPerPower = 8;
    static constexpr std::size_t kLargest = 512;
    static constexpr std::size_t kLargestRounded = 64 * 1024;
    static constexpr std::size_t kClasses = 3 * kPerPower;
    static constexpr std::size_t kBytesPerClass = 128 * 1024;

    static constexpr unsigned step_bits(std::size_t n) noexcept {
        return static_cast<unsigned>(std::bit_width((n - (n != 0)) | 128)) - kLeastStepBits;
    }
    static constexpr std::size_t class_of(std::size_t n) noexcept {
        const unsigned bits = step_bits(n);
        return ((n - (n != 0)) >> bits) + (bits - kLeastStepBits) * kPerPower;
    }
    static constexpr std::size_t largest_of(std::size_t c) noexcept {
        const std::size_t doublings = c < 2 * kPerPower ? 0 : c / kPerPower - 1;
        return (c - doublings * kPerPower + 1) << (kLeastStepBits + doublings);
    }

    struct FreeBlock {
        FreeBlock* next;
    };
    struct List {
        FreeBlock* first = nullptr;
        unsigned count = 0;
        unsigned limit = 0;

        void* take() noexcept {
            FreeBlock* const block = first;
            if (block == nullptr) return nullptr;
            first = block->next;
            --count;
            return block;
        }
        bool keep(void* p) noexcept {
            if (count >= limit) return false;
            first = new (p) FreeBlock{first};
            ++count;
            return true;
        }
        bool clear() noexcept; // whether there was anything
    };
    // A line of the processor's cache each, so that threads with different sizes do not disturb each other.
    struct alignas(64) SharedList {
        std::atomic_flag busy;
        List list;
    };

    // What the home thread does with its lists. While they are being given back there is nothing in them.
    template <class Action>
    auto at_home(Action action) noexcept -> decltype(action()) {
        at_work_.store(true, std::memory_order_relaxed);
        std::atomic_signal_fence(std::memory_order_seq_cst); // the store first, then the look
        const bool alone = !giving_back_.load(std::memory_order_relaxed);
        const auto result = alone ? action() : decltype(action())();
        at_work_.store(false, std::memory_order_release);
        return result;
    }

    bool give_back_own() noexcept;
    bool give_back_shared() noexcept;

    const void* const home_;
    std::atomic<bool> at_work_{false};     // the home thread is at its lists
    std::atomic<bool> giving_back_{false}; // and has to leave them alone
    List own_[kClasses];
    SharedList shared_[kClasses];
};

} // namespace qzr
