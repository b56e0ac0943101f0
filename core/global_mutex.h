// The one named mutex behind every critical section.
#pragma once

#include "core/win_handle.h"

namespace qzr {

// It exists as long as a critical section of the process does. The number of those is a plain integer:
// critical sections are created and released on one thread at a time. That it may fail to exist all the same
// (another object of the system can have its name) is no failure: locking then does without it.
class GlobalMutex {
public:
    void add_user() noexcept;
    void remove_user() noexcept;

    bool exists() const noexcept { return static_cast<bool>(handle_); }

    // Waits for it, milliseconds or INFINITE. @return the system's answer; WAIT_OBJECT_0 when there is none
    DWORD wait(DWORD milliseconds) noexcept;
    void release() noexcept; // nothing when there is none

private:
    int users_ = 0;
    KernelHandle handle_;
};

// The answer of IEvent::Wait and Wait_All for an answer of the system: a failed wait counts as a signal.
int wait_result(DWORD answer) noexcept;

} // namespace qzr
