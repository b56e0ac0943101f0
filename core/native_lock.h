// The library's own lock. It stands apart from the critical sections that callers create: those share a named
// mutex across processes, which nothing inside the library should wait for.
#pragma once

#include "core/windows_lean.h"

namespace qzr {

// Recursive: the thread that holds it may take it again.
class NativeLock {
public:
    NativeLock() noexcept { InitializeCriticalSection(&section_); }
    ~NativeLock() { DeleteCriticalSection(&section_); }
    NativeLock(const NativeLock&) = delete;
    NativeLock& operator=(const NativeLock&) = delete;

    void lock() noexcept { EnterCriticalSection(&section_); }
    void unlock() noexcept { LeaveCriticalSection(&section_); }

private:
    CRITICAL_SECTION section_;
};

} // namespace qzr
