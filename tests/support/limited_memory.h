// Memory that the system refuses to the library from some request on.
#pragma once

#include "support/import_mock.h"

#include <windows.h>

class LimitedMemory {
public:
    explicit LimitedMemory(int requests = 0)
        : mock_("qzrcore.dll", "HeapAlloc", reinterpret_cast<void*>(&allocate)) {
        left_ = requests;
    }

private:
    static inline int left_ = 0; // of the one that lives
    static void* WINAPI allocate(HANDLE heap, DWORD flags, SIZE_T size) {
        return left_-- > 0 ? HeapAlloc(heap, flags, size) : nullptr;
    }

    ImportMock mock_;
};
