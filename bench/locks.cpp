// Critical sections.
#include "bench/ledger.h"
#include "qzref.h"
#include "qzsync.h"

#include <windows.h>

namespace bench {
namespace {

// What a critical section of the library is: a mutex of the system with a name, then a section.
class BareSection {
public:
    BareSection() : mutex_(CreateMutexA(nullptr, FALSE, "qzrbench")) { InitializeCriticalSection(&section_); }
    BareSection(const BareSection&) = delete;
    BareSection& operator=(const BareSection&) = delete;
    ~BareSection() {
        DeleteCriticalSection(&section_);
        CloseHandle(mutex_);
    }
    void lock() {
        WaitForSingleObject(mutex_, INFINITE);
        EnterCriticalSection(&section_);
    }
    void unlock() {
        LeaveCriticalSection(&section_);
        ReleaseMutex(mutex_);
    }

private:
    HANDLE mutex_;
    CRITICAL_SECTION section_;
};

// Whether the lock is the mutex of all sections: nobody else gets it meanwhile.
bool locks() {
    const auto section = CQZRef<ICritSect>::Adopt(CriticalSection_New());
    const auto other_gets_it = [] {
        int answer = 0;
        const auto wait = [](void* out) -> DWORD {
            *static_cast<int*>(out) = Wait_All(0);
            if (*static_cast<int*>(out) == QZWAIT_SIGNALLED) Wait_Release();
            return 0;
        };
        const HANDLE thread = CreateThread(nullptr, 0, wait, &answer, 0, nullptr);
        WaitForSingleObject(thread, INFINITE);
        CloseHandle(thread);
        return answer == QZWAIT_SIGNALLED;
    };
    section->Lock();
    const bool held = !other_gets_it();
    section->Unlock();
    return held && other_gets_it();
}

} // namespace

void lock_rows(Ledger& ledger) {
    ledger.row({"locks", "lock and unlock a critical section", "the bare mutex and section", 1.10, locks,
                [](State& state) {
                    const auto section = CQZRef<ICritSect>::Adopt(CriticalSection_New());
                    for (auto _ : state) {
                        section->Lock();
                        section->Unlock();
                    }
                },
                [](State& state) {
                    BareSection section;
                    for (auto _ : state) {
                        section.lock();
                        section.unlock();
                    }
                }});
}

} // namespace bench
