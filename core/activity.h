// What the heaps have done so far, in numbers.
#pragma once

#include "core/this_thread.h"

#include <atomic>
#include <cstdint>

namespace qzr {

// Cumulative counters, exact from any number of threads. A thread has a slot of its own and adds there
// without an atomic instruction: those would cost an allocation a fifth of its time. A thread that finds its
// slot taken by another, be it one that ended long ago, counts in the slot for all.
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
        std::atomic<const void*> thread{nullptr};
        Counter bytes{0};
        Counter operations{0};
    };
    static constexpr unsigned kSlotBits = 6;

    // What tells threads apart are addresses of whole pages, some of them many pages apart.
    Slot& slot_of(const void* thread) noexcept {
        const auto page = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(thread)) / 4096;
        return own_[page * 0x9E3779B97F4A7C15u >> (64 - kSlotBits)];
    }

    void count(unsigned long long bytes) noexcept {
        const void* const self = this_thread();
        Slot& slot = slot_of(self);
        if (slot.thread.load(std::memory_order_relaxed) == self || claim(slot, self)) {
            add_alone(slot.bytes, bytes);
            add_alone(slot.operations, 1);
        } else {
            shared_.bytes.fetch_add(bytes, std::memory_order_relaxed);
            shared_.operations.fetch_add(1, std::memory_order_relaxed);
        }
    }

    static bool claim(Slot& slot, const void* self) noexcept {
        const void* free = nullptr;
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

    Slot own_[1 << kSlotBits];
    Slot shared_;
};

} // namespace qzr
