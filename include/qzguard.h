/// @file
/// Holders for locks: what the constructor takes the destructor gives back. Header-only.
#pragma once

#include "qzfile.h"
#include "qzref.h"
#include "qzsync.h"
#include "qztext.h"

#include <string>

namespace qz {

/// Holds a critical section for the length of a block.
class CritSectGuard {
public:
    /// Locks; waits for ever. The section is not counted: it outlives the guard.
    explicit CritSectGuard(ICritSect& section) : section_(section) { section_.Lock(); }
    ~CritSectGuard() { section_.Unlock(); }                  ///< unlocks
    CritSectGuard(const CritSectGuard&) = delete;            ///< one guard, one lock
    CritSectGuard& operator=(const CritSectGuard&) = delete; ///< one guard, one lock

private:
    ICritSect& section_;
};

/// Keeps every other thread, of every process that uses the library, out of all critical sections
/// (Wait_All), for the length of a block.
class WaitAllGuard {
public:
    /// Waits. @param timeout milliseconds; -1 waits for ever
    explicit WaitAllGuard(int timeout = -1) : result_(Wait_All(timeout)) {}
    /// Gives the mutex back, if it was had.
    ~WaitAllGuard() {
        if (*this) Wait_Release();
    }
    WaitAllGuard(const WaitAllGuard&) = delete;            ///< one guard, one wait
    WaitAllGuard& operator=(const WaitAllGuard&) = delete; ///< one guard, one wait

    int result() const noexcept { return result_; } ///< @return one of QZWaitResult
    /// @return false after QZWAIT_TIMEOUT. True is that the others are kept out, but also that there was
    ///         nothing to wait for: no critical section lived, and one made later is not kept out of; or the
    ///         wait failed.
    explicit operator bool() const noexcept { return result_ != QZWAIT_TIMEOUT; }

private:
    int result_;
};

/// Holds a lock on a path (Fio_LockFile) for the length of a block.
class PathLock {
public:
    /// Locks. @param exclusive whether the library's own files are kept out too
    PathLock(WideTextArg path, bool exclusive) : path_(path.str()), exclusive_(exclusive) {
        const int before = Fio_LockCount(path_.c_str(), exclusive_);
        Fio_LockFile(path_.c_str(), exclusive_);
        held_ = Fio_LockCount(path_.c_str(), exclusive_) > before;
    }
    /// Gives the lock back, if it was had.
    ~PathLock() {
        if (held_) Fio_UnlockFile(path_.c_str(), exclusive_);
    }
    PathLock(const PathLock&) = delete;            ///< one holder, one lock
    PathLock& operator=(const PathLock&) = delete; ///< one holder, one lock

    explicit operator bool() const noexcept { return held_; } ///< @return whether the lock was had

private:
    std::wstring path_;
    bool exclusive_;
    bool held_;
};

} // namespace qz
