#include "system/interrupt.h"

#include "qzexport.h" // keeps min and max out of the system header

#include <windows.h>

#include <atomic>

namespace tool {

namespace {

std::atomic<bool> interrupted = false; // set on a thread of the system's

BOOL WINAPI on_control(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
    return !interrupted.exchange(true);
}

} // namespace

InterruptWatch::InterruptWatch() { SetConsoleCtrlHandler(on_control, TRUE); }
InterruptWatch::~InterruptWatch() { SetConsoleCtrlHandler(on_control, FALSE); }
bool InterruptWatch::asked() { return interrupted; }

} // namespace tool
