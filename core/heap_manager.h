// The process's heaps: their list, the default heap, the lock they share, the low-memory sink, the
// statistics.
#pragma once

#include "core/activity.h"
#include "core/heap.h"
#include "core/native_lock.h"

#include <atomic>

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

    // After the system has refused a request: asks the sink whether to try again, and tries again, until
    // there is an answer or the sink gives up (null, also when there is no sink). With the lock held.
    template <class Request>
    auto retry(Request request) {
        const RefusedRequest refused(refused_);
        decltype(request()) answer = nullptr;
        for (unsigned attempt = 0; answer == nullptr && ask_sink(attempt); ++attempt)
            answer = request();
        return answer;
    }

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

    bool ask_sink(unsigned attempt);

    static constexpr unsigned kDefaultHeaps = 1;

    CHeap* default_heaps_[kDefaultHeaps] = {};
    unsigned next_default_ = 0;
    QZ_LISTITEM* first_ = nullptr;
    unsigned count_ = 0;
    std::atomic<bool> refused_{false};
    NativeLock lock_;
    unsigned budget_ = 0;
    ILowMemoryNotifySink* sink_ = nullptr;
    Activity activity_;
};

} // namespace qzr
