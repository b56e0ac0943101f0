// What the heaps have done so far, in numbers.
#pragma once

#include "core/windows_lean.h"

#include <atomic>

namespace qzr {

// Cumulative counters, exact from any number of threads. A thread has a slot of its own, found by its id, and
// adds there without an atomic instruction: those would cost an allocation a fifth of its time. A thread that
// finds its slot taken by another, be it one that ended long ago, counts in the slot for all.
class Activity {
public:
    void count_request(unsigned long long bytes) noexcept { count(bytes); }
    void count_free() noexcept { count(0); }

    unsigned long long bytes() const noexcept { return sum(&Slot::bytes); }
    unsigned long long operations() const noexcept { return sum(&Slot::operations); }

private:
    using Counter = std::atomic<unsigned long long>;

    // A line of the processor's cache each.
    struct alignas(64) Slot {
        std::atomic<DWORD> thread{0};
        Counter bytes{0};
        Counter operations{0};
    };
    static constexpr unsigned kSlots = 64;

    void count(unsigned long long bytes) noexcept {
        const DWORD self = GetCurrentThreadId();
        Slot& slot = own_[self / 4 % kSlots]; // thread ids are multiples of four
        if (slot.thread.load(std::memory_order_relaxed) == self || claim(slot, self)) {
            add_alone(slot.bytes, bytes);
            add_alone(slot.operations, 1);
        } else {
            shared_.bytes.fetch_add(bytes, std::memory_order_relaxed);
            shared_.operations.fetch_add(1, std::memory_order_relaxed);
        }
    }

    static bool claim(Slot& slot, DWORD self) noexcept {
        DWORD free = 0;
        return slot.thread.compare_exchange_strong(free, self, std::memory_order_relaxed);
    }

    static void add_alone(Counter& counter, unsigned long long n) noexcept {
        counter.store(counter.load(std::memory_order_relaxed) + n, std::memory_order_relaxed);
    }

    unsigned long long sum(Counter Slot::*counter) const noexcept {
        unsigned long long total = (shared_.*counter).load(std::memory_order_relaxed);
        for (const Slot& slot : own_)
            total += (slot.*counter).load(std::memory_order_relaxed);
        return total;
    }

    Slot own_[kSlots];
    Slot shared_;
};

} // namespace qzr
