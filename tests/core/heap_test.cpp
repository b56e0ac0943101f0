// Heaps: what blocks look like, how they are moved, what is counted, and what happens when memory runs out.
#include "qzexception.h"
#include "qzheap.h"
#include "qzref.h"
#include "qzstream.h"
#include "qzstring.h"
#include "support/file_failure.h"
#include "support/import_mock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <windows.h>

namespace {

constexpr unsigned long long kRefused = 1ull << 40; // more than any heap here is given

CQZRef<IHeap> make_heap() { return CQZRef<IHeap>::Adopt(new_MemoryHeap(0)); }

unsigned long long requested_bytes() {
    unsigned long long bytes = 0;
    Get_CoreActivity(&bytes, nullptr);
    return bytes;
}

unsigned operations() {
    unsigned count = 0;
    Get_CoreActivity(nullptr, &count);
    return count;
}

// In the second round the memory has been used before.
TEST(Heap, AllocGivesZeroedDistinctBlocks) {
    const auto heap = make_heap();
    EXPECT_EQ(heap->GetOverhead(), 8);
    for (int round = 0; round < 2; ++round) {
        std::vector<char*> blocks;
        for (const unsigned size : {0u, 0u, 1u, 7u, 8u, 100u, 4096u, 1u << 20}) {
            SCOPED_TRACE(size);
            auto* const block = static_cast<char*>(heap->Alloc(size));
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 8, 0u);
            EXPECT_EQ(heap->GetSize(block), static_cast<int>(size));
            for (unsigned i = 0; i < size; ++i)
                ASSERT_EQ(block[i], 0) << "byte " << i;
            std::memset(block, 0xCC, size);
            for (const char* other : blocks)
                EXPECT_NE(block, other);
            blocks.push_back(block);
        }
        for (char* block : blocks)
            EXPECT_NE(heap->Free(block), 0);
    }
}

// The copy is shorter than one expects when a block shrinks or grows by less than a header.
TEST(Heap, ReallocZeroesTheLastBytes) {
    const struct {
        unsigned old_size, new_size, kept;
    } rows[] = {{100, 50, 42}, {100, 100, 92}, {100, 107, 99}, {100, 108, 100}, {100, 200, 100},
                {0, 16, 0},    {16, 0, 0},     {16, 8, 0},     {16, 9, 1},      {1, 1, 0}};
    const auto heap = make_heap();
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.old_size << " to " << row.new_size);
        auto* const old_block = static_cast<unsigned char*>(heap->Alloc(row.old_size));
        std::memset(old_block, 0x5A, row.old_size);
        auto* const block = static_cast<unsigned char*>(heap->Realloc(old_block, row.new_size));
        EXPECT_NE(block, old_block);
        EXPECT_EQ(heap->GetSize(block), static_cast<int>(row.new_size));
        for (unsigned i = 0; i < row.new_size; ++i)
            ASSERT_EQ(block[i], i < row.kept ? 0x5A : 0) << "byte " << i;
        heap->Free(block);
    }
}

TEST(Heap, AnyHeapServesTheBlocksOfAnyOther) {
    const auto maker = make_heap();
    const auto other = make_heap();
    void* block = maker->Alloc(24);
    EXPECT_EQ(other->GetSize(block), 24);
    block = other->Realloc(block, 48);
    void* owner = nullptr;
    std::memcpy(&owner, static_cast<char*>(block) - 8, sizeof owner);
    EXPECT_EQ(owner, static_cast<void*>(maker.Get())) << "the block stays in the heap that made it";
    EXPECT_NE(other->Free(block), 0);
}

TEST(Heap, ImpossibleSizesAreExhaustion) {
    const auto heap = make_heap();
    void* const block = heap->Alloc(16);
    std::memset(block, 1, 16);
    for (const unsigned long long size : {kRefused, ~0ull, ~0ull - 7, ~0ull - 8}) {
        SCOPED_TRACE(size);
        const unsigned long long before = requested_bytes();
        EXPECT_THROW(heap->Alloc(size), CXMemException);
        EXPECT_THROW(heap->Realloc(block, size), CXMemException);
        EXPECT_EQ(requested_bytes(), before);
    }
    EXPECT_EQ(static_cast<char*>(block)[15], 1) << "the old block is untouched";
    std::thread([&] { heap->Free(heap->Alloc(1)); }).join(); // the lock was given back
    heap->Free(block);
}

HANDLE WINAPI no_heap(DWORD, SIZE_T, SIZE_T) { return nullptr; }

TEST(Heap, OneThatTheSystemRefusesIsExhaustion) {
    const ImportMock none("qzrcore.dll", "HeapCreate", reinterpret_cast<void*>(&no_heap));
    EXPECT_THROW(new_MemoryHeap(0), CXMemException);
}

TEST(Heap, ReleaseCountsButNotOnTheDefaultHeap) {
    IHeap* const heap = new_MemoryHeap(0);
    EXPECT_EQ(heap->AddRef(), 2u);
    EXPECT_EQ(heap->Release(), 1u);
    heap->Alloc(10); // goes with the heap
    EXPECT_EQ(heap->Release(), 0u);

    IHeap* const permanent = Mem_DefaultHeap(0);
    EXPECT_EQ(permanent, Mem_DefaultHeap(12345));
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(permanent->Release(), 1u);
    EXPECT_EQ(permanent->AddRef(), 1u);
    permanent->Free(permanent->Alloc(10));
}

TEST(Heap, ActivityCountsBytesWithHeadersAndOperations) {
    const auto heap = make_heap();
    struct Step {
        const char* what;
        unsigned long long bytes;
        unsigned operations;
    };
    unsigned long long bytes = requested_bytes();
    unsigned ops = operations();
    const auto expect = [&](const Step& step) {
        SCOPED_TRACE(step.what);
        EXPECT_EQ(requested_bytes() - bytes, step.bytes);
        EXPECT_EQ(operations() - ops, step.operations);
        bytes = requested_bytes();
        ops = operations();
    };
    void* block = heap->Alloc(10);
    expect({"Alloc", 18, 1});
    block = heap->Realloc(block, 100);
    expect({"Realloc", 108, 2});
    heap->GetSize(block);
    expect({"GetSize", 0, 0});
    heap->Free(block);
    expect({"Free", 0, 1});
    new_MemoryHeap(12345)->Release();
    expect({"a heap with a hint", 12345, 1});
    Mem_DefaultHeap(0);
    expect({"Mem_DefaultHeap", 0, 0});
}

// Blocks keep their bytes, and not one request is lost from the statistics.
TEST(Heap, ServesManyThreadsAtOnce) {
    const auto heap = make_heap();
    constexpr int kThreads = 80; // more than can count each for itself
    constexpr int kRounds = 200;
    const unsigned long long before = requested_bytes();
    std::vector<std::thread> threads;
    std::vector<int> damaged(kThreads);
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            std::vector<unsigned char*> held;
            for (unsigned i = 0; i < kRounds; ++i) {
                auto* block = static_cast<unsigned char*>(heap->Alloc(16 + i % 200));
                std::memset(block, t + 1, 16);
                if (i % 4 == 0) block = static_cast<unsigned char*>(heap->Realloc(block, 300));
                held.push_back(block);
                if (held.size() < 16) continue;
                damaged[static_cast<std::size_t>(t)] += held.front()[0] != t + 1;
                heap->Free(held.front());
                held.erase(held.begin());
            }
            for (unsigned char* block : held)
                heap->Free(block);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(damaged, std::vector<int>(kThreads));
    unsigned long long expected = 0;
    for (unsigned i = 0; i < kRounds; ++i)
        expected += (16 + i % 200 + 8) + (i % 4 == 0 ? 300 + 8 : 0);
    EXPECT_EQ(requested_bytes() - before, kThreads * expected);
}

class LowMemorySink : public ILowMemoryNotifySink {
public:
    int OnLowMemory(unsigned attempt) override {
        if (throws) throw 42;
        attempts.push_back(attempt);
        if (meanwhile) meanwhile();
        return attempts.size() <= retries ? 1 : 0;
    }

    std::vector<unsigned> attempts;
    unsigned retries = 0;
    bool throws = false;
    std::function<void()> meanwhile;
};

// The sink is installed once for the life of the process; each test tells it what to do.
class LowMemory : public testing::Test {
protected:
    static void SetUpTestSuite() { Mem_SetLowMemoryNotifySink(&sink); }
    void TearDown() override { sink = LowMemorySink(); }

    static inline LowMemorySink sink;
    const CQZRef<IHeap> heap = make_heap();
};

TEST_F(LowMemory, SinkIsAskedUntilItGivesUp) {
    sink.retries = 2;
    for (const unsigned long long size : {kRefused, ~0ull}) {
        SCOPED_TRACE(size);
        sink.attempts.clear();
        EXPECT_THROW(heap->Alloc(size), CXMemException);
        EXPECT_EQ(sink.attempts, (std::vector<unsigned>{0, 1, 2}));
    }
}

// Both are refused before either asks the sink, which can make room only once.
std::atomic<bool> full{false};
std::atomic<int> threads_refused{0};
thread_local bool refused_before = false;

void* WINAPI alloc_unless_full(HANDLE heap, DWORD flags, SIZE_T size) {
    if (!full) return HeapAlloc(heap, flags, size);
    if (!std::exchange(refused_before, true)) ++threads_refused;
    while (threads_refused < 2)
        Sleep(1);
    return nullptr;
}

TEST_F(LowMemory, RoomThatOneThreadsSinkMadeServesTheOther) {
    sink.retries = 1;
    sink.meanwhile = [] { full = false; };
    const ImportMock mock("qzrcore.dll", "HeapAlloc", reinterpret_cast<void*>(&alloc_unless_full));
    full = true;
    const auto request = [&] { EXPECT_NO_THROW(heap->Alloc(1)); };
    std::thread other(request);
    request();
    other.join();
    EXPECT_EQ(sink.attempts, std::vector<unsigned>{0});
}

std::atomic<bool> freed{false};

void* WINAPI alloc_once_freed(HANDLE heap, DWORD flags, SIZE_T size) {
    return freed ? HeapAlloc(heap, flags, size) : nullptr;
}
BOOL WINAPI note_free(HANDLE heap, DWORD flags, LPVOID block) {
    freed = true;
    return HeapFree(heap, flags, block);
}

// Blocks of texts are kept for the next text; none of them may be missing when memory runs out.
TEST_F(LowMemory, TextsThatWereLetGoAreMemory) {
    const struct {
        bool dropped_before, asked_elsewhere;
    } rows[] = {{false, false}, {false, true}, {true, false}, {true, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.dropped_before << row.asked_elsewhere);
        std::vector<CXString> texts;
        for (int i = 0; i < 1000; ++i)
            texts.emplace_back(std::string(80, 'x').c_str());
        sink.meanwhile = nullptr;
        EXPECT_THROW(heap->Alloc(kRefused), CXMemException); // nothing else is left to be used again
        if (row.dropped_before) texts.clear();
        sink.attempts.clear();
        sink.retries = 0; // what it dropped is found even so
        sink.meanwhile = [&] { texts.clear(); };
        const ImportMock alloc("qzrcore.dll", "HeapAlloc", reinterpret_cast<void*>(&alloc_once_freed));
        const ImportMock free("qzrcore.dll", "HeapFree", reinterpret_cast<void*>(&note_free));
        freed = false;
        const auto request = [&] { EXPECT_NO_THROW(heap->Alloc(10'000)); };
        if (row.asked_elsewhere) {
            std::thread(request).join();
        } else {
            request();
        }
        EXPECT_EQ(sink.attempts.size(), row.dropped_before ? 0u : 1u);
    }
}

bool space_refused = false;

void* WINAPI commit_or_refuse(void* place, SIZE_T bytes, DWORD type, DWORD protection) {
    return space_refused ? nullptr : VirtualAlloc(place, bytes, type, protection);
}

// Large memory streams lie outside the heap.
TEST_F(LowMemory, LargeStreamsAskTheSinkAndAreCounted) {
    constexpr unsigned kMiB = 1u << 20;
    const auto stream = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
    const auto block = CQZRef<IMemBlock>::Require(stream.Get());
    sink.meanwhile = [&] { space_refused = sink.retries == 0; };
    const ImportMock mock("qzrcore.dll", "VirtualAlloc", reinterpret_cast<void*>(&commit_or_refuse));
    const struct {
        std::function<void()> request;
        unsigned bytes, operations;
    } rows[] = {{[&] { block->SetData(nullptr, kMiB); }, kMiB + 8, 1},
                {[&] { stream->Seek(0, 2), stream->WriteDWord(7); }, 3 * kMiB + 8, 2},
                {[&] { block->SetData(nullptr, 2 * kMiB); }, 2 * kMiB + 8, 2}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.bytes);
        sink.attempts.clear();
        sink.retries = 0;
        space_refused = true;
        EXPECT_THROW(row.request(), CXMemException);
        space_refused = true;
        sink.attempts.clear();
        sink.retries = 1;
        const unsigned long long bytes = requested_bytes();
        const unsigned ops = operations();
        row.request();
        EXPECT_EQ(sink.attempts, std::vector<unsigned>{0});
        EXPECT_EQ(requested_bytes() - bytes, row.bytes);
        EXPECT_EQ(operations() - ops, row.operations);
    }
}

// Nobody takes what the sink is about to give back; the sink itself may allocate.
TEST_F(LowMemory, OtherThreadsWaitWhileTheSinkIsAsked) {
    sink.retries = 0;
    std::atomic<bool> served{false};
    std::thread other;
    sink.meanwhile = [&] {
        heap->Free(heap->Alloc(1));
        other = std::thread([&] {
            heap->Free(heap->Alloc(1));
            served = true;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_FALSE(served);
    };
    EXPECT_THROW(heap->Alloc(kRefused), CXMemException);
    other.join();
    EXPECT_TRUE(served);
}

TEST_F(LowMemory, SecondSinkIsRefused) {
    for (ILowMemoryNotifySink* second :
         {static_cast<ILowMemoryNotifySink*>(&sink), static_cast<ILowMemoryNotifySink*>(nullptr)}) {
        EXPECT_EQ(failure_of([&] { Mem_SetLowMemoryNotifySink(second); }), "code 10");
    }
}

TEST_F(LowMemory, SinkThatThrowsLeavesTheLockFree) {
    sink.throws = true;
    EXPECT_THROW(Mem_DefaultHeap(0)->Alloc(kRefused), int);
    std::thread([] { Mem_DefaultHeap(0)->Free(Mem_DefaultHeap(0)->Alloc(1)); }).join();
}

} // namespace
