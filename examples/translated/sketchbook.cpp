#include "sketchbook.h"

#include "ids.h"

namespace {

constexpr int kMostUnits = 200;
constexpr unsigned kTexts[] = {IDS_WELCOME, IDS_DRAW, IDS_TURN, IDS_EMPTY, IDS_READY};

HINSTANCE program() { return GetModuleHandleW(nullptr); }

void paint(HWND window) {
    PAINTSTRUCT paint;
    HDC const dc = BeginPaint(window, &paint);
    SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
    SetBkMode(dc, TRANSPARENT);
    int y = 150;
    for (const unsigned id : kTexts) {
        wchar_t text[kMostUnits];
        load_text(id, text, kMostUnits);
        TextOutW(dc, 16, y, text, lstrlenW(text));
        y += 20;
    }
    EndPaint(window, &paint);
}

LRESULT CALLBACK window_procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
    switch (message) {
    case WM_PAINT:
        paint(window);
        return 0;
    case WM_COMMAND:
        if (LOWORD(w) == IDM_EXIT) PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcW(window, message, w, l);
    }
}

INT_PTR CALLBACK dialog_procedure(HWND dialog, UINT message, WPARAM, LPARAM) {
    if (message != WM_INITDIALOG) return FALSE;
    SetDlgItemTextW(dialog, IDC_SPACING, L"5");
    SetDlgItemTextW(dialog, IDC_MARGIN, L"20");
    CheckDlgButton(dialog, IDC_SHOW, BST_CHECKED);
    CheckDlgButton(dialog, IDC_PORTRAIT, BST_CHECKED);
    return FALSE; // the focus stays with the window
}

HWND open_window() {
    WNDCLASSEXW window_class = {};
    window_class.cbSize = sizeof window_class;
    window_class.lpfnWndProc = window_procedure;
    window_class.hInstance = program();
    window_class.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
    window_class.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
    window_class.lpszClassName = L"Sketchbook";
    RegisterClassExW(&window_class);
    wchar_t title[kMostUnits];
    load_text(IDS_TITLE, title, kMostUnits);
    return CreateWindowExW(0, L"Sketchbook", title, WS_CAPTION | WS_THICKFRAME, 20, 20, 440, 330, nullptr,
                           load_sketchbook_menu(), program(), nullptr);
}

HWND open_dialog(int id, HWND owner, bool visible, int x, int y) {
    HWND const dialog = CreateDialogParamW(program(), MAKEINTRESOURCEW(id), owner, dialog_procedure, 0);
    if (dialog == nullptr) return nullptr;
    SetWindowPos(dialog, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    if (!visible) ShowWindow(dialog, SW_HIDE);
    return dialog;
}

} // namespace

void load_text(unsigned id, wchar_t* text, int size) {
    if (LoadStringW(program(), id, text, size) == 0) text[0] = 0;
    text[size - 1] = 0;
}

HMENU load_sketchbook_menu() { return LoadMenuW(program(), MAKEINTRESOURCEW(IDM_MAIN)); }

Sketchbook open_sketchbook(bool visible) {
    Sketchbook opened = {};
    opened.window = open_window();
    if (opened.window == nullptr) return opened;
    if (visible) ShowWindow(opened.window, SW_SHOW);
    opened.grid = open_dialog(IDD_GRID, opened.window, visible, 470, 20);
    opened.page = open_dialog(IDD_PAGE, opened.window, visible, 470, 190);
    return opened;
}

void close_sketchbook(const Sketchbook& sketchbook) {
    if (sketchbook.window != nullptr) DestroyWindow(sketchbook.window); // and with it what it owns
}

void open_file_menu(HWND window) {
    POINT corner = {0, 0};
    ClientToScreen(window, &corner);
    TrackPopupMenu(GetSubMenu(GetMenu(window), 0), 0, corner.x, corner.y, 0, window, nullptr);
}
