// Translating menus and windows.
#include "qzstring.h"
#include "qzsupp.h"
#include "supp/menu_walk.h"
#include "supp/translate.h"

namespace {

constexpr unsigned kMenuUnits = 256;    // of an item's text, with its zero
constexpr unsigned kWindowUnits = 1024; // of a window's text, with its zero

// Menus reach the user translated by the hooked loaders; here their items are written back as they are, and
// callers rely on what that does to them.
const wchar_t* same_text(const wchar_t* text) { return text; }

} // namespace

int Supp_Translate(HMENU menu) {
    if (!qzr::dictionary_is_empty()) qzr::rewrite_menu(menu, kMenuUnits, same_text);
    return 1;
}

int Supp_Translate(HWND window) {
    if (qzr::dictionary_is_empty()) return 1;
    wchar_t text[kWindowUnits] = {};
    GetWindowTextW(window, text, kWindowUnits);
    qzr::translate_in_place(text, kWindowUnits);
    // Also when nothing changed: controls measure themselves anew when their text is set.
    SetWindowTextW(window, text);
    return 1;
}
