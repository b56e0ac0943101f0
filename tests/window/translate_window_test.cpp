// Translating windows and menus: what a person would see is read back.
#include "supp/dictionary_files.h"
#include "support/child_process.h"
#include "window/menus.h"

#include "qzsupp.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <windows.h>

namespace {

void load(const std::string& lines) {
    DictionaryFiles files;
    ASSERT_EQ(files.add(lines), 1);
}

// A window that lives as long as this object and counts how often its text is set.
class Window {
public:
    explicit Window(const wchar_t* text, HWND parent = nullptr)
        : window_(CreateWindowExW(0, L"EDIT", text, parent != nullptr ? WS_CHILD : WS_OVERLAPPEDWINDOW, 10,
                                  10, 200, 80, parent, nullptr, nullptr, nullptr)) {
        SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        edit_ = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&counting)));
    }
    ~Window() { DestroyWindow(window_); }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    HWND handle() const { return window_; }
    int times_set() const { return times_set_; }
    std::wstring text() const {
        std::wstring text(3000, L'\0');
        text.resize(static_cast<std::size_t>(GetWindowTextW(window_, text.data(), 3000)));
        return text;
    }

private:
    static LRESULT CALLBACK counting(HWND window, UINT message, WPARAM w, LPARAM l) {
        auto* const self = reinterpret_cast<Window*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (message == WM_SETTEXT) ++self->times_set_;
        return CallWindowProcW(self->edit_, window, message, w, l);
    }

    HWND window_;
    WNDPROC edit_ = nullptr;
    int times_set_ = 0;
};

TEST_ALONE(TranslateWindow, LeavesAllAloneWithoutDictionary) {
    const Window window(L"Open");
    EXPECT_EQ(Supp_Translate(window.handle()), 1);
    EXPECT_EQ(window.times_set(), 0);
    HMENU const menu = CreateMenu();
    AppendMenuW(menu, MF_STRING | MF_DISABLED, 5, L"Open");
    EXPECT_EQ(Supp_Translate(menu), 1);
    EXPECT_EQ(GetMenuState(menu, 0, MF_BYPOSITION), static_cast<UINT>(MF_DISABLED));
    DestroyMenu(menu);
}

TEST(TranslateWindow, ReplacesTheTextAndSetsItInEveryCase) {
    const std::wstring long_text(1500, L'w');
    load(pair_lines("Open", "Ouvrir") + pair_lines("Hollow", "") +
         pair_lines("Long", std::string(1500, 'W')) + pair_lines(std::string(1023, 'w'), "cut") +
         pair_lines("Cursive", "\\n\\t"));
    const struct {
        std::wstring text;
        std::wstring expected;
    } rows[] = {
        {L"Open", L"Ouvrir"},
        {L"open", L"open"},
        {L"", L""},
        {L"Hollow", L"Hollow"},
        {L"Long", std::wstring(1023, L'W')},
        {long_text, L"cut"}, // of which 1023 units are looked at
        {std::wstring(1500, L'u'), std::wstring(1023, L'u')},
    };
    for (const auto& row : rows) {
        const Window window(row.text.c_str());
        EXPECT_EQ(Supp_Translate(window.handle()), 1);
        EXPECT_EQ(window.text(), row.expected) << row.text.size() << " units";
        EXPECT_EQ(window.times_set(), 1) << row.text.size() << " units";
    }
    EXPECT_EQ(Supp_Translate(static_cast<HWND>(nullptr)), 1);
}

TEST(TranslateWindow, TranslatesNoChildren) {
    load(pair_lines("Open", "Ouvrir"));
    const Window parent(L"Open");
    const Window child(L"Open", parent.handle());
    EXPECT_EQ(Supp_Translate(parent.handle()), 1);
    EXPECT_EQ(parent.text(), L"Ouvrir");
    EXPECT_EQ(child.text(), L"Open");
}

// --- menus

HMENU sub_menu(HMENU menu, const wchar_t* text, UINT flags = 0) {
    HMENU const sub = CreatePopupMenu();
    AppendMenuW(menu, MF_POPUP | flags, reinterpret_cast<UINT_PTR>(sub), text);
    return sub;
}

TEST(TranslateMenu, WritesItemsBackWithTheirTextsAndSomeStates) {
    load(pair_lines("File", "Fichier") + pair_lines("Open", "Ouvrir"));
    HMENU const menu = CreateMenu();
    HMENU const file = sub_menu(menu, L"File", MF_GRAYED);
    AppendMenuW(menu, MF_STRING | MF_CHECKED, 7, L"Open");
    AppendMenuW(file, MF_STRING, 1, L"Open");
    AppendMenuW(file, MF_STRING | MF_GRAYED, 2, L"Gray");
    AppendMenuW(file, MF_STRING | MF_DISABLED, 3, L"Disabled");
    AppendMenuW(file, MF_STRING, 4, L"Default");
    SetMenuDefaultItem(file, 4, FALSE);
    AppendMenuW(file, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(file, MF_STRING | MF_DISABLED, 0, L"No command");
    AppendMenuW(file, MF_STRING, 5, std::wstring(400, L'x').c_str());
    HMENU const deeper = sub_menu(file, L"Deeper", MF_CHECKED);
    AppendMenuW(deeper, MF_STRING | MF_DISABLED, 6, L"Deep");
    HMENU const unnamed = sub_menu(file, L"");
    AppendMenuW(unnamed, MF_STRING | MF_DISABLED, 8, L"Unseen");

    EXPECT_EQ(Supp_Translate(menu), 1);
    EXPECT_EQ(describe(menu), L"File grayed (Open #1|Gray #2 grayed|Disabled #3|Default #4|line|"
                              L"No command #0 disabled|255 units #5|Deeper checked (Deep #6|)|"
                              L" (Unseen #8 disabled|)|)|Open #7 checked|");
    DestroyMenu(menu);
    EXPECT_EQ(Supp_Translate(static_cast<HMENU>(nullptr)), 1);
}

TEST(TranslateMenu, EndsWithMenusThatHangInSeveralPlaces) {
    load(pair_lines("any", "entry"));
    HMENU const menu = CreatePopupMenu();
    for (int i = 0; i < 8; ++i)
        AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(menu), L"Again");
    AppendMenuW(menu, MF_STRING | MF_DISABLED, 1, L"End");
    EXPECT_EQ(Supp_Translate(menu), 1);
    EXPECT_EQ(GetMenuState(menu, 8, MF_BYPOSITION), 0U);
    while (RemoveMenu(menu, 0, MF_BYPOSITION)) {
    }
    DestroyMenu(menu);
}

TEST(TranslateMenu, GoesDown64Levels) {
    load(pair_lines("any", "entry"));
    HMENU const menu = CreatePopupMenu();
    std::vector<HMENU> levels = {menu};
    while (levels.size() < 70)
        levels.push_back(sub_menu(levels.back(), L"Down"));
    for (HMENU const level : levels)
        AppendMenuW(level, MF_STRING | MF_DISABLED, 1, L"Item");
    EXPECT_EQ(Supp_Translate(menu), 1);
    int rewritten = 0;
    for (HMENU const level : levels)
        rewritten += GetMenuState(level, 1, MF_BYPOSITION) == 0 || GetMenuState(level, 0, MF_BYPOSITION) == 0;
    EXPECT_EQ(rewritten, 64);
    while (!levels.empty()) { // from the inside, since the system destroys recursively
        RemoveMenu(levels.back(), 0, MF_BYPOSITION);
        DestroyMenu(levels.back());
        levels.pop_back();
    }
}

} // namespace
