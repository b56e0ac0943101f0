// What the module's calls of the hooked functions reach at the moment: the contents of its import table.
#pragma once

#include <windows.h>

#define QZR_HOOKED_FUNCTIONS(X)                                                                              \
    X(LoadStringA)                                                                                           \
    X(LoadStringW)                                                                                           \
    X(LoadMenuIndirectA)                                                                                     \
    X(LoadMenuA)                                                                                             \
    X(LoadMenuW)                                                                                             \
    X(LoadResource)                                                                                          \
    X(FindResourceA)                                                                                         \
    X(FindResourceExA)                                                                                       \
    X(FindResourceW)                                                                                         \
    X(FindResourceExW)                                                                                       \
    X(LockResource)                                                                                          \
    X(FreeResource)                                                                                          \
    X(SizeofResource)                                                                                        \
    X(CreateDialogParamA)                                                                                    \
    X(CreateDialogParamW)                                                                                    \
    X(DialogBoxParamA)                                                                                       \
    X(DialogBoxParamW)                                                                                       \
    X(MessageBoxIndirectA)                                                                                   \
    X(MessageBoxA)                                                                                           \
    X(MessageBoxExA)                                                                                         \
    X(DialogBoxIndirectParamA)                                                                               \
    X(DialogBoxIndirectParamW)                                                                               \
    X(CreateDialogIndirectParamA)                                                                            \
    X(CreateDialogIndirectParamW)

struct Calls {
#define QZR_MEMBER(function) decltype(&::function) function;
    QZR_HOOKED_FUNCTIONS(QZR_MEMBER)
#undef QZR_MEMBER
};

using ReadCalls = void(Calls&);
