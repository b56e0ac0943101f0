// The sample application: a window with a menu and a few texts, and two dialogs. Nothing in it is prepared
// for translation; it knows neither dictionaries nor the library.
#pragma once

#include <windows.h>

struct Sketchbook {
    HWND window;
    HWND grid; // a dialog of the plain layout
    HWND page; // one of the extended layout
};

// Loads everything from the resources of the program and shows it, or makes it without showing it. Where
// windows are not to be had, their handles are null.
Sketchbook open_sketchbook(bool visible);
void close_sketchbook(const Sketchbook& sketchbook);

// Opens the first menu, as a click would, and returns when it is closed.
void open_file_menu(HWND window);

HMENU load_sketchbook_menu();
void load_text(unsigned id, wchar_t* text, int size);
