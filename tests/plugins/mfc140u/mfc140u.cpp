// Plays a module of the list that is hooked with a dictionary: it calls every hooked function and has
// strings, menus and dialogs.
#include "calls.h"

extern "C" __declspec(dllexport) void read_calls(Calls& calls) {
#define QZR_READ(function) calls.function = &::function;
    QZR_HOOKED_FUNCTIONS(QZR_READ)
#undef QZR_READ
}
