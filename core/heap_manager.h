// The process's heaps: their list, the default heap, the lock they share, the low-memory sink, the
// statistics.
#pragma once

#include "core/activity.h"
#include "core/block_cache.h"
#include "core/heap.h"
#include "core/native_lock.h"
#include "qzexception.h"

#include <atomic>
#include <mutex>

namespace qzr {

// The bytes that the library allows itself, from what the system has to spare. The first term is cut to 32
// bits before it is halved, the sum after it is multiplied; hence the detour through 64 bits.
constexpr unsigned memory_budget(unsigned long long page_file, unsigned long long physical) {
    constexpr double kShare = 0.8;
    constexpr unsigned kLeast = 4'096'000;
    constexpr unsigned kMost = 16'384'000;
    const auto paged =
        static_cast<unsigned>(static_cast<unsigned long long>(kShare * static_cast<double>(page_file)));
    const unsigned half = paged / 2;
    const double sum = (half + kShare * static_cast<double>(physical)) * 4;
    const auto budget = static_cast<unsigned>(static_cast<unsigned long long>(sum));
    return budget < kLeast ? kLeast : budget > kMost ? kMost : budget;
}
static_assert(memory_budget(0, 0) == 4'096'000);
static_assert(memory_budget(2'000'000, 1'000'000) == 6'400'000);
static_assert(memory_budget(16ull << 30, 8ull << 30) == 16'384'000);
static_assert(memory_budget(0, (1ull << 32) / 16 * 5) == 4'096'000, "the sum wraps to 0");

// Switches a heap to the low-fragmentation mode; a refusal does no harm.
void use_low_fragmentation(HANDLE heap) noexcept;

class HeapManager {
public:
    HeapManager();  // throws CXMemException
    ~HeapManager(); // destroys every heap that is still there
    HeapManager(const HeapManager&) = delete;
    HeapManager& operator=(const HeapManager&) = delete;

    CHeap& default_heap() noexcept { return *default_heaps_[0]; }
    CHeap* next_default_heap() noexcept; // round robin

    // Held for creating, resizing and destroying, and from the moment that the system has refused a request
    // until it is settled. Outside the live count of the critical sections.
    NativeLock& lock() noexcept { return lock_; }

    // Waits as long as another thread is about a refused request: the sink may be making room. Allocating
    // needs no lock else, since the system's heaps have their own; taking it cost a pair of Alloc and Free a
    // sixth of its time.
    void wait_for_sink() noexcept {
        if (!refused_.load(std::memory_order_relaxed)) [[likely]]
            return;
        lock_.lock();
        lock_.unlock();
    }

    // With the lock held.
    void link(CHeap& heap) noexcept;
    void unlink(CHeap& heap) noexcept;
    Activity& activity() noexcept { return activity_; }

    // What every request for memory goes through, whichever part of the system serves it: `request` answers
    // the memory or null, and is tried until it has an answer or the sink gives up. bytes is what the
    // statistics get to see. Throws CXMemException.
    template <class Request>
    void* obtain(unsigned long long bytes, Request request) {
        wait_for_sink();
        void* memory = request();
        if (memory == nullptr) [[unlikely]]
            memory = obtain_again(request);
        activity_.count_request(bytes);
        return memory;
    }

    // After the system has refused a request. It is repeated before anybody is asked, since another thread's
    // sink may have made room while this one waited for the lock; then without the blocks that are kept to be
    // used again; then as often as the sink says so. The texts that a sink drops become such blocks: they are
    // given back after each of its answers. Null when the sink gives up or there is none. With the lock held.
    template <class Request>
    auto retry(Request request) {
        const RefusedRequest refused(refused_);
        auto answer = request();
        if (answer == nullptr && give_back_recycled()) answer = request();
        for (unsigned attempt = 0; answer == nullptr; ++attempt) {
            const bool again = ask_sink(attempt);
            if (give_back_recycled() || again) answer = request();
            if (!again) break;
        }
        return answer;
    }

    // The blocks in front of the default heap, which are given back when memory runs out.
    void set_recycled(BlockCache* blocks) noexcept { recycled_ = blocks; }

    void install_sink(ILowMemoryNotifySink* sink); // throws CXException when one is installed
    unsigned budget() const noexcept { return budget_; }

private:
    // The sink may allocate, and so meet a refusal within a refusal.
    class RefusedRequest {
    public:
        explicit RefusedRequest(std::atomic<bool>& flag) noexcept
            : flag_(flag), outer_(flag.exchange(true)) {}
        ~RefusedRequest() { flag_.store(outer_); }
        RefusedRequest(const RefusedRequest&) = delete;
        RefusedRequest& operator=(const RefusedRequest&) = delete;

    private:
        std::atomic<bool>& flag_;
        bool outer_;
    };

    template <class Request>
    [[gnu::noinline]] void* obtain_again(Request request) {
        const std::lock_guard guard(lock_);
        void* const memory = retry(request);
        if (memory == nullptr) throw CXMemException();
        return memory;
    }

    bool ask_sink(unsigned attempt);
    bool give_back_recycled() noexcept; // whether there were any

    static constexpr unsigned kDefaultHeaps = 1;

    CHeap* default_heaps_[kDefaultHeaps] = {};
    unsigned next_default_ = 0;
    QZ_LISTITEM* first_ = nullptr;
    unsigned count_ = 0;
    std::atomic<bool> refused_{false};
    NativeLock lock_;
    unsigned budget_ = 0;
    ILowMemoryNotifySink* sink_ = nullptr;
    BlockCache* recycled_ = nullptr;
    Activity activity_;
};

} // namespace qzr
