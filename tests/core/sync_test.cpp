// Critical sections under the system mutex, events, threads. Waits are bounded: the mutex is shared by every
// process of the prefix.
#include "qzsync.h"

#include "qzexception.h"
#include "qzheap.h"
#include "qzref.h"
#include "qzstring.h"
#include "support/child_process.h"
#include "support/import_mock.h"
#include "support/limited_memory.h"
#include "support/open_handles.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <windows.h>

namespace {

constexpr char kMutexName[] = "QZ_Fix_Fucking_NT_Bugs_Mutex";
constexpr int kPatience = 20000; // milliseconds

bool mutex_exists() {
    HANDLE const mutex = OpenMutexA(SYNCHRONIZE, FALSE, kMutexName);
    if (mutex != nullptr) CloseHandle(mutex);
    return mutex != nullptr;
}

// Runs f on a thread of its own and waits for it.
template <class F>
void on_other_thread(F f) {
    std::thread thread(f);
    thread.join();
}

TEST(CriticalSection, MutexLivesFromTheFirstSectionToTheLast) {
    ASSERT_FALSE(mutex_exists());
    EXPECT_EQ(Wait_All(0), QZWAIT_SIGNALLED) << "nothing to wait for";
    Wait_Release(); // and nothing to give back

    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        auto a = CQZRef<ICritSect>::Adopt(CriticalSection_New());
        auto b = CQZRef<ICritSect>::Adopt(CriticalSection_New());
        EXPECT_TRUE(mutex_exists());
        a.Reset();
        EXPECT_TRUE(mutex_exists());
        b.Reset();
        EXPECT_FALSE(mutex_exists());
    }
}

TEST(CriticalSection, InMemoryOfTheCallers) {
    int size = 0;
    EXPECT_EQ(_CriticalSection_New_For_Core(nullptr, &size), nullptr);
    EXPECT_EQ(_CriticalSection_New_For_Core(nullptr, nullptr), nullptr);
    EXPECT_GE(size, static_cast<int>(sizeof(void*) + sizeof(CRITICAL_SECTION) + 2 * sizeof(int)));
    EXPECT_FALSE(mutex_exists());

    void* const memory = Mem_DefaultHeap()->Alloc(static_cast<unsigned>(size));
    ICritSect* section = _CriticalSection_New_For_Core(memory, nullptr);
    ASSERT_EQ(static_cast<void*>(section), memory);
    EXPECT_TRUE(mutex_exists());
    EXPECT_EQ(section->AddRef(), 2u);
    IQZUnknown* out = section;
    EXPECT_EQ(section->QueryInterface(typeid(IQZUnknown), &out), 0) << "it answers no query";
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(section->Release(), 1u);
    EXPECT_EQ(section->Release(), 0u);
    EXPECT_FALSE(mutex_exists());
}

TEST(CriticalSection, LockIsRecursiveAndKeepsOthersOutOfAllSections) {
    auto a = CQZRef<ICritSect>::Adopt(CriticalSection_New());
    auto b = CQZRef<ICritSect>::Adopt(CriticalSection_New());
    a->Lock();
    a->Lock();
    b->Lock();
    on_other_thread([] { EXPECT_EQ(Wait_All(50), QZWAIT_TIMEOUT); });
    b->Unlock();
    a->Unlock();
    on_other_thread([] { EXPECT_EQ(Wait_All(50), QZWAIT_TIMEOUT); });
    a->Unlock();
    on_other_thread([] {
        EXPECT_EQ(Wait_All(kPatience), QZWAIT_SIGNALLED);
        Wait_Release();
    });
}

TEST(WaitAll, HoldsSectionsBackUntilReleased) {
    auto section = CQZRef<ICritSect>::Adopt(CriticalSection_New());
    ASSERT_EQ(Wait_All(-1), QZWAIT_SIGNALLED);
    std::atomic<bool> entered{false};
    std::thread other([&] {
        section->Lock();
        entered = true;
        section->Unlock();
    });
    Sleep(100);
    EXPECT_FALSE(entered);
    Wait_Release();
    other.join();
    EXPECT_TRUE(entered);
}

TEST(WaitAll, TellsOfAnOwnerThatEnded) {
    auto section = CQZRef<ICritSect>::Adopt(CriticalSection_New());
    on_other_thread([] { EXPECT_EQ(Wait_All(kPatience), QZWAIT_SIGNALLED); }); // and never gives it back
    EXPECT_EQ(Wait_All(kPatience), QZWAIT_ABANDONED);
    Wait_Release();
}

TEST(WaitAll, SeesTheMutexOfAnotherProcess) {
    auto section = CQZRef<ICritSect>::Adopt(CriticalSection_New());
    const ChildProcess child("WaitAll.DISABLED_HoldAndDie", L"");
    ASSERT_TRUE(child.wait_ready());
    EXPECT_EQ(Wait_All(0), QZWAIT_TIMEOUT);
    child.end();
    EXPECT_EQ(Wait_All(kPatience), QZWAIT_ABANDONED);
    Wait_Release();
}

// The other process of the test above: takes the mutex and waits to be ended.
TEST(WaitAll, DISABLED_HoldAndDie) {
    auto section = CQZRef<ICritSect>::Adopt(CriticalSection_New());
    ASSERT_EQ(Wait_All(kPatience), QZWAIT_SIGNALLED);
    child_ready();
    Sleep(kPatience);
}

TEST(WaitAll, GoesOnWithoutMutexWhenItsNameIsTaken) {
    HANDLE const squatter = CreateEventA(nullptr, TRUE, FALSE, kMutexName);
    ASSERT_NE(squatter, nullptr);
    {
        auto section = CQZRef<ICritSect>::Adopt(CriticalSection_New());
        EXPECT_EQ(Wait_All(0), QZWAIT_SIGNALLED);
        on_other_thread([] { EXPECT_EQ(Wait_All(0), QZWAIT_SIGNALLED) << "nothing was taken"; });
        section->Lock();
        section->Unlock();
    }
    CloseHandle(squatter);
}

// The mutex then stays for the rest of the process, so this comes last.
TEST(WaitAll, WithoutMemoryThereIsNoSectionButTheMutex) {
    {
        const LimitedMemory none;
        EXPECT_EQ(CriticalSection_New(), nullptr);
    }
    EXPECT_TRUE(mutex_exists());
}

// What the first of several rounds leaves open stays open for good; the later ones leave nothing.
class HandleCount {
public:
    void end_round() {
        const unsigned now = open_handles();
        EXPECT_TRUE(first_ == 0 || now <= first_) << now << " handles instead of " << first_;
        first_ = first_ != 0 ? first_ : now;
    }

private:
    unsigned first_ = 0;
};

TEST(Event, ResetsItselfAfterAWait) {
    HandleCount handles;
    const struct {
        int initial;
        int first;
    } rows[] = {{1, QZWAIT_SIGNALLED}, {-7, QZWAIT_SIGNALLED}, {0, QZWAIT_TIMEOUT}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.initial);
        IEvent* event = Event_New(row.initial);
        EXPECT_EQ(event->Wait(0), row.first);
        EXPECT_EQ(event->Wait(0), QZWAIT_TIMEOUT);
        EXPECT_NE(event->Set(), 0);
        EXPECT_NE(event->Reset(), 0);
        EXPECT_EQ(event->Wait(20), QZWAIT_TIMEOUT);
        EXPECT_NE(event->Set(), 0);
        EXPECT_EQ(event->Wait(0xFFFFFFFF), QZWAIT_SIGNALLED);
        IQZUnknown* out = event;
        EXPECT_EQ(event->QueryInterface(typeid(IQZUnknown), &out), 0);
        EXPECT_EQ(out, nullptr);
        EXPECT_EQ(event->AddRef(), 2u);
        EXPECT_EQ(event->Release(), 1u);
        EXPECT_EQ(event->Release(), 0u);
        handles.end_round();
    }
}

TEST(ObjectName, IsTheKeysAddressAndTheProcessWhateverTheThread) {
    const std::string pid = std::to_string(static_cast<int>(GetCurrentProcessId()));
    const struct {
        unsigned long long address;
        const char* digits;
    } rows[] = {
        {0, "0"},
        {12345, "12345"},
        {0x80000000ull, "-2147483648"},
        {0x100000007ull, "7"}, // keys 4 GiB apart share a name
    };
    for (const auto& row : rows) {
        for (const unsigned long id : {0ul, 1ul, 0xFFFFFFFFul}) {
            char buffer[22];
            QZCreateObjName(reinterpret_cast<const char*>(row.address), buffer, id);
            EXPECT_EQ(buffer, row.digits + pid);
        }
    }
}

struct ThreadArgument {
    const char* key;
    bool signals;
    int value;
};

unsigned thread_procedure(void* argument) {
    auto* const a = static_cast<ThreadArgument*>(argument);
    if (a->signals) {
        char name[22];
        QZCreateObjName(a->key, name, 0);
        HANDLE const started = OpenEventA(EVENT_MODIFY_STATE, FALSE, name);
        SetEvent(started);
        CloseHandle(started);
    }
    a->value = 42;
    return 7;
}

TEST(Thread, StartsAndWaitsForItsSignalForOneSecondAtMost) {
    static const char key[] = "worker";
    HandleCount handles;
    for (const bool signals : {true, false}) {
        SCOPED_TRACE(signals);
        ThreadArgument argument{key, signals, 0};
        unsigned long id = 0;
        const ULONGLONG begin = GetTickCount64();
        HANDLE const thread = QZCreateThread(key, thread_procedure, &argument, signals ? &id : nullptr);
        const ULONGLONG took = GetTickCount64() - begin;
        ASSERT_NE(thread, nullptr);
        if (signals) {
            EXPECT_LT(took, 900u);
        } else {
            EXPECT_GE(took, 990u);
            EXPECT_LT(took, 5000u);
        }
        EXPECT_EQ(WaitForSingleObject(thread, kPatience), WAIT_OBJECT_0);
        EXPECT_EQ(id, signals ? GetThreadId(thread) : 0u);
        DWORD code = 0;
        GetExitCodeThread(thread, &code);
        EXPECT_EQ(code, 7u);
        EXPECT_EQ(argument.value, 42);
        CloseHandle(thread);
        handles.end_round();
    }
}

int page_932() { return 932; }

// The page is another one by the time that its lead bytes are asked for: they are those of the page all the
// same, since they are kept for the rest of the process.
TEST(CodePage, LeadBytesAreThoseOfThePageThatWasMet) {
    const ImportMock mock("qzrcore.dll", "_getmbcp", reinterpret_cast<void*>(&page_932));
    EXPECT_EQ(CXString("\x81\x41").GetLength(), 1u);
}

} // namespace
