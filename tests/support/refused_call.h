// A function of the system that fails for the library, with an error of the test's choice.
#pragma once

#include "support/import_mock.h"

#include <windows.h>

class RefusedCall {
public:
    RefusedCall(const char* function, DWORD error)
        : mock_("qzrcore.dll", function, reinterpret_cast<void*>(&fail)) {
        error_ = error;
    }

private:
    static inline DWORD error_ = 0; // of the one that lives
    static void* fail() {
        SetLastError(error_);
        return nullptr;
    }

    ImportMock mock_;
};
