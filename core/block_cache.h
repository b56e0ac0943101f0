// Freed blocks kept for the next request of their size.
#pragma once

#include <atomic>
#include <cstddef>
#include <new>

namespace qzr {

// One list per size class, each behind a flag that is only tried, never waited for: a thread that finds it
// taken goes to the heap instead. So threads do not queue here, and one that was ended while it held a flag
// blocks nobody.
class BlockCache {
public:
    constexpr BlockCache() {
        for (std::size_t i = 0; i < kClasses; ++i)
            classes_[i].limit = static_cast<unsigned>(kBytesPerClass / ((i + 1) * kStep));
    }
    ~BlockCache() { clear(); }
    BlockCache(const BlockCache&) = delete;
    BlockCache& operator=(const BlockCache&) = delete;

    // The size that a block for n bytes must have to be kept here later.
    static constexpr std::size_t rounded(std::size_t n) noexcept {
        return n <= kLargest ? (class_of(n) + 1) * kStep : n;
    }

    // A block for n bytes, or null.
    void* take(std::size_t n) noexcept {
        if (n > kLargest) return nullptr;
        SizeClass& c = classes_[class_of(n)];
        if (c.busy.test_and_set(std::memory_order_acquire)) return nullptr;
        FreeBlock* const block = c.first;
        if (block != nullptr) {
            c.first = block->next;
            --c.count;
        }
        c.busy.clear(std::memory_order_release);
        return block;
    }

    // Keeps a block for n bytes. False when its class is full or taken: the caller frees the block then.
    bool keep(void* p, std::size_t n) noexcept {
        if (n > kLargest) return false;
        SizeClass& c = classes_[class_of(n)];
        if (c.busy.test_and_set(std::memory_order_acquire)) return false;
        const bool kept = c.count < c.limit;
        if (kept) {
            c.first = new (p) FreeBlock{c.first};
            ++c.count;
        }
        c.busy.clear(std::memory_order_release);
        return kept;
    }

    // Gives every block back to its heap. No other thread may use the cache then.
    void clear() noexcept;

private:
    static constexpr std::size_t kStep = 16;
    static constexpr std::size_t kLargest = 512;
    static constexpr std::size_t kClasses = kLargest / kStep;
    static constexpr std::size_t kBytesPerClass = 128 * 1024;

    static constexpr std::size_t class_of(std::size_t n) noexcept { return n == 0 ? 0 : (n - 1) / kStep; }

    struct FreeBlock {
        FreeBlock* next;
    };
    // A line of the processor's cache each, so that threads with different sizes do not disturb each other.
    struct alignas(64) SizeClass {
        std::atomic_flag busy;
        unsigned count = 0;
        unsigned limit = 0;
        FreeBlock* first = nullptr;
    };

    SizeClass classes_[kClasses];
};

} // namespace qzr
