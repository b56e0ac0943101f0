// Heap blocks.
#include "bench/ledger.h"
#include "bench/names.h"
#include "qzheap.h"
#include "qzref.h"

#include <thread>
#include <vector>
#include <windows.h>

namespace bench {
namespace {

constexpr std::size_t kSize = 64;
constexpr unsigned kBlocks = 10000;

struct LibraryHeap {
    CQZRef<IHeap> heap = CQZRef<IHeap>::Adopt(new_MemoryHeap(0));
    void* alloc() const { return heap->Alloc(kSize); }
    void free(void* p) const { heap->Free(p); }
};

struct PlatformHeap {
    HANDLE heap = HeapCreate(0, 0, 0);
    PlatformHeap() = default;
    PlatformHeap(const PlatformHeap&) = delete;
    PlatformHeap& operator=(const PlatformHeap&) = delete;
    ~PlatformHeap() { HeapDestroy(heap); }
    void* alloc() const { return HeapAlloc(heap, HEAP_ZERO_MEMORY, kSize); }
    void free(void* p) const { HeapFree(heap, 0, p); }
};

template <class Heap>
void pairs(State& state) {
    const Heap heap;
    for (auto _ : state) {
        void* p = heap.alloc();
        DoNotOptimize(p);
        heap.free(p);
    }
}

template <class Heap>
void shuffled_frees(State& state) {
    const Heap heap;
    const std::vector<unsigned> order = shuffled(kBlocks);
    std::vector<void*> blocks(kBlocks);
    for (auto _ : state) {
        for (void*& block : blocks)
            block = heap.alloc();
        for (const unsigned i : order)
            heap.free(blocks[i]);
    }
}

template <class Heap>
void two_threads(State& state) {
    const Heap heap;
    const auto work = [&heap] {
        for (unsigned i = 0; i < 20000; ++i) {
            void* p = heap.alloc();
            DoNotOptimize(p);
            heap.free(p);
        }
    };
    for (auto _ : state) {
        std::thread other(work);
        work();
        other.join();
    }
}

bool gives_zeroes() {
    const LibraryHeap heap;
    const auto* p = static_cast<const unsigned char*>(heap.alloc());
    for (std::size_t i = 0; i < kSize; ++i)
        if (p[i] != 0) return false;
    heap.free(const_cast<unsigned char*>(p));
    return true;
}

} // namespace

void heap_rows(Ledger& ledger) {
    const char* beside = "HeapAlloc, zeroed, on one private heap";
    ledger.row({"heaps", "a 64-byte block, taken and freed", beside, 1.12, gives_zeroes, pairs<LibraryHeap>,
                pairs<PlatformHeap>});
    ledger.row({"heaps", "10,000 64-byte blocks, freed in shuffled order", beside, 1.08, gives_zeroes,
                shuffled_frees<LibraryHeap>, shuffled_frees<PlatformHeap>});
    ledger.row({"heaps", "64-byte blocks from two threads", beside, 1.15, gives_zeroes,
                two_threads<LibraryHeap>, two_threads<PlatformHeap>});
}

} // namespace bench
