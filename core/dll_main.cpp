// The entry point of the DLL.
#include "core/library.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    switch (reason) {
    case DLL_PROCESS_ATTACH:
        return qzr::start_library();
    case DLL_PROCESS_DETACH:
        qzr::stop_library();
        return TRUE;
    default:
        return TRUE;
    }
}
