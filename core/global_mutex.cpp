#include "core/global_mutex.h"

#include "core/library.h"
#include "qzsync.h"

namespace qzr {

namespace {

// Part of the contract between processes: another version of this library waits for the same name.
constexpr char kMutexName[] = "QZ_Fix_Fucking_NT_Bugs_Mutex";

} // namespace

void GlobalMutex::add_user() noexcept {
    if (users_ == 0) handle_.reset(CreateMutexA(nullptr, FALSE, kMutexName));
    ++users_;
}

void GlobalMutex::remove_user() noexcept {
    --users_;
    if (users_ == 0) handle_.reset();
}

DWORD GlobalMutex::wait(DWORD milliseconds) noexcept {
    return exists() ? WaitForSingleObject(handle_.get(), milliseconds) : WAIT_OBJECT_0;
}

void GlobalMutex::release() noexcept {
    if (exists()) ReleaseMutex(handle_.get());
}

int wait_result(DWORD answer) noexcept {
    switch (answer) {
    case WAIT_ABANDONED:
        return QZWAIT_ABANDONED;
    case WAIT_TIMEOUT:
        return QZWAIT_TIMEOUT;
    default:
        return QZWAIT_SIGNALLED;
    }
}

} // namespace qzr

int Wait_All(int timeout) {
    // -1 is INFINITE once it is unsigned.
    return qzr::wait_result(qzr::library().global_mutex.wait(static_cast<DWORD>(timeout)));
}

void Wait_Release() { qzr::library().global_mutex.release(); }
