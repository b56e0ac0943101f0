// Translation: texts by hand, and the resources of a module through hooks.
#include "guide.h"

#include "guide_ids.h"
#include "qzcore.h"

#include <windows.h>

#include <cstdio>

namespace {

// A program loads its texts as ever. The system's own function, not the library's: the hook is in its way.
std::string loaded(unsigned id) {
    wchar_t text[100] = {};
    LoadStringW(GetModuleHandleW(nullptr), id, text, 100);
    return qz::utf8(text);
}

std::string loaded_as_it_is(unsigned id) {
    wchar_t text[100] = {};
    LoadStringNotTransW(GetModuleHandleW(nullptr), id, text, 100);
    return qz::utf8(text);
}

} // namespace

void translation(const Argument& dictionary) {
    std::printf("at first:      %s\n", loaded(IDS_WELCOME).c_str());
    if (Supp_Init(dictionary.c_str()) == 0) std::printf("the dictionary or its companion cannot be read\n");
    std::printf("code page:     %lu\n", Supp_GetACP());

    // Texts by hand: what has no translation stays as it is.
    std::printf("by hand:       %s\n", qz::utf8(Supp_Translate(L"Good morning")).c_str());
    std::printf("               %s\n", qz::utf8(Supp_Translate(L"Good night")).c_str());

    // This module's own calls of the system, without a change to them.
    Supp_InitResTranslation(GetModuleHandleW(nullptr));
    std::printf("hooked:        %s\n", loaded(IDS_WELCOME).c_str());
    std::printf("as it is:      %s\n", loaded_as_it_is(IDS_WELCOME).c_str());
    Supp_SetTranslationEnable(0);
    std::printf("switched off:  %s\n", loaded(IDS_WELCOME).c_str());
    Supp_SetTranslationEnable(1);
    _DeInitResTranslation(GetModuleHandleW(nullptr));
    std::printf("hooks removed: %s\n", loaded(IDS_WELCOME).c_str());
}
