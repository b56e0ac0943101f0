// Shows the sample application in its own language, and translated with a dictionary.
//
//     translated                                shows it until its menu's last item ends it
//     translated german.wld                     the same, translated
//     translated --seconds 5 [german.wld]       until five seconds have passed
//     translated --text german.wld              prints what it shows: as it is, and translated
//
// Two calls are all that translation takes: see translate() below.
#include "qzsupp.h"
#include "qztext.h"
#include "sketchbook.h"

#include "ids.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

// --- translation

bool translate(const char* dictionary) {
    wchar_t path[MAX_PATH] = {};
    MultiByteToWideChar(CP_ACP, 0, dictionary, -1, path, MAX_PATH - 1);
    // Loads the dictionary and hooks the class libraries. This program uses none: its own module loads its
    // texts, so it has that one hooked too.
    return Supp_Init(path) != 0 && Supp_InitResTranslation(GetModuleHandleW(nullptr)) != 0;
}

// --- as text

std::string utf8(const wchar_t* text) {
    std::string bytes = qz::utf8(text);
    for (char& c : bytes)
        if (c == '\t') c = ' ';
    return bytes;
}

void print(int depth, const wchar_t* text) { std::printf("%*s%s\n", 2 * depth + 2, "", utf8(text).c_str()); }

void print_strings() {
    std::puts("strings");
    for (const unsigned id : {IDS_TITLE, IDS_WELCOME, IDS_DRAW, IDS_TURN, IDS_EMPTY, IDS_READY}) {
        wchar_t text[200];
        load_text(id, text, 200);
        print(0, text);
    }
}

void print_menu(HMENU menu, int depth) {
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        wchar_t text[200] = {};
        if (GetMenuStringW(menu, static_cast<UINT>(i), text, 200, MF_BYPOSITION) == 0) continue;
        print(depth, text);
        if (HMENU const sub_menu = GetSubMenu(menu, i)) print_menu(sub_menu, depth + 1);
    }
}

void print_dialog(HWND dialog) {
    wchar_t text[200] = {};
    GetWindowTextW(dialog, text, 200);
    print(0, text);
    for (HWND control = GetWindow(dialog, GW_CHILD); control != nullptr;
         control = GetWindow(control, GW_HWNDNEXT)) {
        text[0] = 0;
        GetWindowTextW(control, text, 200);
        print(1, text);
    }
}

void print_all() {
    print_strings();
    std::puts("menu");
    HMENU const menu = load_sketchbook_menu();
    print_menu(menu, 0);
    DestroyMenu(menu);
    std::puts("dialogs");
    const Sketchbook sketchbook = open_sketchbook(false);
    if (sketchbook.grid == nullptr || sketchbook.page == nullptr) {
        std::puts("  (not shown: there is no display)");
    } else {
        print_dialog(sketchbook.grid);
        print_dialog(sketchbook.page);
    }
    close_sketchbook(sketchbook);
}

// --- on the screen

void CALLBACK end(HWND, UINT, UINT_PTR, DWORD) {
    EndMenu();
    PostQuitMessage(0);
}

// Runs until the application is ended. With a time in seconds it opens a menu too, for a picture, and ends by
// itself.
int show(unsigned seconds) {
    const Sketchbook sketchbook = open_sketchbook(true);
    if (sketchbook.window == nullptr) {
        std::puts("there is no display");
        return 1;
    }
    if (seconds != 0) SetTimer(nullptr, 0, seconds * 1000, end);
    std::puts("shown");
    std::fflush(stdout);
    if (seconds != 0) open_file_menu(sketchbook.window);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (IsDialogMessageW(sketchbook.grid, &message) || IsDialogMessageW(sketchbook.page, &message))
            continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    close_sketchbook(sketchbook);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    bool text = false;
    unsigned seconds = 0;
    const char* dictionary = nullptr;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--text") == 0) {
            text = true;
        } else if (std::strcmp(argv[i], "--seconds") == 0 && i + 1 < argc) {
            seconds = static_cast<unsigned>(std::atoi(argv[++i]));
        } else {
            dictionary = argv[i];
        }
    }
    if (text) print_all();
    if (dictionary != nullptr && !translate(dictionary)) {
        std::printf("%s or its companion file cannot be read\n", dictionary);
        return 1;
    }
    if (!text) return show(seconds);
    if (dictionary != nullptr) {
        std::printf("\n--- with %s\n\n", dictionary);
        print_all();
    }
    return 0;
}
