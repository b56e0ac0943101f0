// Keeps the system from asking the user about a failing drive while it looks something up.
#pragma once

#include "core/last_error_keeper.h"

namespace qzr {

// For the calling thread, as long as it lives. The thread's last error survives its end.
class QuietErrorMode {
public:
    QuietErrorMode() noexcept {
        SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &previous_);
    }
    ~QuietErrorMode() {
        const LastErrorKeeper keeper;
        SetThreadErrorMode(previous_, nullptr);
    }
    QuietErrorMode(const QuietErrorMode&) = delete;
    QuietErrorMode& operator=(const QuietErrorMode&) = delete;

private:
    DWORD previous_ = 0;
};

} // namespace qzr
