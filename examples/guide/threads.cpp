// Heaps, critical sections, events and threads.
#include "guide.h"

#include "qzcore.h"

#include <windows.h>

#include <cstdio>

namespace {

constexpr char kName[] = "counter"; // its address makes the name of the start event
constexpr int kRounds = 1000;

struct Work {
    CQZRef<ICritSect> section = CQZRef<ICritSect>::Adopt(CriticalSection_New());
    CQZRef<IEvent> done = CQZRef<IEvent>::Adopt(Event_New(0));
    int count = 0;
};

void add(Work& work) {
    const qz::CritSectGuard guard(*work.section); // unlocks at the end of the block
    ++work.count;
}

unsigned count_up(void* argument) {
    char event[22];
    QZCreateObjName(kName, event, 0);
    HANDLE const started = OpenEventA(EVENT_MODIFY_STATE, FALSE, event);
    SetEvent(started); // the creator waits for it
    CloseHandle(started);

    Work& work = *static_cast<Work*>(argument);
    for (int i = 0; i < kRounds; ++i)
        add(work);
    work.done->Set();
    return 0;
}

} // namespace

void threads(const Argument&) {
    Work work;
    HANDLE const thread = QZCreateThread(kName, count_up, &work, nullptr);
    for (int i = 0; i < kRounds; ++i)
        add(work);
    std::printf("the thread %s\n", work.done->Wait(10000) == QZWAIT_SIGNALLED ? "is done" : "hangs");
    std::printf("both counted to %d\n", work.count);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);

    // A heap of one's own: the last Release frees all that is still in it, at once.
    const auto heap = CQZRef<IHeap>::Adopt(new_MemoryHeap(0));
    auto* block = static_cast<char*>(heap->Alloc(100));
    std::printf("a block of %d bytes, the first is %d\n", heap->GetSize(block), block[0]);
    block = static_cast<char*>(heap->Realloc(block, 200));
    std::printf("moved to one of %d\n", Mem_DefaultHeap()->GetSize(block)); // any heap may be asked
    try {
        heap->Alloc(1ull << 60);
    } catch (const CXMemException& e) {
        std::printf("too much: error %u\n", e.GetCode());
    }
}
