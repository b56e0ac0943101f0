// Hooked menus, dialogs and message boxes: what a person would see is read back. Each test has a process of
// its own, since dictionaries stay.
#include "qzsupp.h"

#include "supp/dictionary_files.h"
#include "supp/fruit_module.h"
#include "support/child_process.h"
#include "window/menus.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace {

const std::string kFruit = pair_lines("Apple", "Apfel") + pair_lines("Pear", "Birne") +
                           pair_lines("Basket", "Ein Korb mit viel Obst") + pair_lines("More", "Mehr");

// --- menus

TEST_ALONE(HookedMenus, AreTranslatedWithTheirStates) {
    const FruitModule fruit(kFruit + in_context(2, "7", "Fruit", "Obst") +
                            in_context(2, "ORCHARD", "Pear", "Birnbaum"));
    HMODULE const module = fruit.get();
    const Calls calls = fruit.calls();
    const wchar_t* const seven = L"Obst (Apfel #100 checked|line|Mehr (Birne #101 grayed|)|)|Fig #102|";
    const wchar_t* const orchard = L"Birnbaum #101|";
    EXPECT_EQ(describe(calls.LoadMenuW(module, MAKEINTRESOURCEW(7))), seven);
    EXPECT_EQ(describe(calls.LoadMenuA(module, MAKEINTRESOURCEA(7))), seven);
    EXPECT_EQ(describe(calls.LoadMenuW(module, L"ORCHARD")), orchard);
    EXPECT_EQ(describe(calls.LoadMenuA(module, "ORCHARD")), orchard);
    // From memory a menu has no context.
    const void* const bytes =
        LockResource(LoadResource(module, FindResourceW(module, MAKEINTRESOURCEW(7), MAKEINTRESOURCEW(4))));
    EXPECT_EQ(describe(calls.LoadMenuIndirectA(bytes)),
              L"Fruit (Apfel #100 checked|line|Mehr (Birne #101 grayed|)|)|Fig #102|");

    EXPECT_EQ(calls.LoadMenuW(module, L"NOTHING"), nullptr);
    Supp_SetTranslationEnable(0);
    EXPECT_EQ(describe(calls.LoadMenuW(module, L"ORCHARD")), L"Pear #101|");
}

// --- dialogs

std::wstring text_of(HWND window) {
    wchar_t text[64] = {};
    GetWindowTextW(window, text, 64);
    return text;
}

struct Seen {
    std::wstring texts; // caption and controls, a bar between them
    std::string creation_data;
    RECT check_box = {};
};

Seen look_at(HWND dialog) {
    Seen seen;
    seen.texts = text_of(dialog);
    for (const int control : {201, 202, 203, 204})
        seen.texts += L"|" + text_of(GetDlgItem(dialog, control));
    GetWindowRect(GetDlgItem(dialog, 202), &seen.check_box);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&seen.check_box), 2);
    return seen;
}

Seen last_seen;

// Looks at the dialog, and ends it with 77 when it is a modal one.
INT_PTR CALLBACK looking(HWND dialog, UINT message, WPARAM, LPARAM modal) {
    if (message != WM_INITDIALOG) return FALSE;
    last_seen = look_at(dialog);
    if (modal != 0) EndDialog(dialog, 77);
    return TRUE;
}

constexpr LPARAM kModal = 1;
constexpr LPARAM kModeless = 0;

class Dialogs {
public:
    explicit Dialogs(const FruitModule& fruit) : module_(fruit.get()), calls_(fruit.calls()) {}

    // By every function that shows a dialog of a resource: all must show the same.
    std::vector<std::wstring> show(const wchar_t* wide, const char* narrow) {
        return {modal(calls_.DialogBoxParamW(module_, wide, nullptr, looking, kModal)),
                modal(calls_.DialogBoxParamA(module_, narrow, nullptr, looking, kModal)),
                modeless(calls_.CreateDialogParamW(module_, wide, nullptr, looking, kModeless)),
                modeless(calls_.CreateDialogParamA(module_, narrow, nullptr, looking, kModeless))};
    }
    std::vector<std::wstring> show_indirect(const void* bytes) {
        const auto* const from = static_cast<LPCDLGTEMPLATEW>(bytes);
        return {modal(calls_.DialogBoxIndirectParamW(module_, from, nullptr, looking, kModal)),
                modal(calls_.DialogBoxIndirectParamA(module_, from, nullptr, looking, kModal)),
                modeless(calls_.CreateDialogIndirectParamW(module_, from, nullptr, looking, kModeless)),
                modeless(calls_.CreateDialogIndirectParamA(module_, from, nullptr, looking, kModeless))};
    }

private:
    static std::wstring modal(INT_PTR result) {
        EXPECT_EQ(result, 77);
        return take();
    }
    static std::wstring modeless(HWND dialog) {
        EXPECT_NE(dialog, nullptr);
        EXPECT_TRUE(DestroyWindow(dialog));
        return take();
    }
    static std::wstring take() { return std::exchange(last_seen, {}).texts; }

    HMODULE module_;
    Calls calls_;
};

std::vector<std::wstring> four_times(const std::wstring& text) { return {text, text, text, text}; }

TEST_ALONE(HookedDialogs, OfBothLayoutsAreTranslated) {
    const FruitModule fruit(kFruit + in_context(1, "5", "Apple", "Boskop") +
                            in_context(1, "CELLAR", "Apple", "Most"));
    HMODULE const module = fruit.get();
    const Calls calls = fruit.calls();
    Dialogs dialogs(fruit);
    const std::wstring plain = L"Ein Korb mit viel Obst|Boskop|Birne||Fig";
    const std::wstring extended = L"Ein Korb mit viel Obst|Most|Birne||Fig";
    EXPECT_EQ(dialogs.show(MAKEINTRESOURCEW(5), MAKEINTRESOURCEA(5)), four_times(plain));
    EXPECT_EQ(dialogs.show(L"CELLAR", "CELLAR"), four_times(extended));

    // From memory: without a context; a template that was served translated is not translated again.
    HRSRC const resource = calls.FindResourceW(module, L"CELLAR", MAKEINTRESOURCEW(5));
    EXPECT_EQ(dialogs.show_indirect(LockResource(LoadResource(module, resource))),
              four_times(L"Ein Korb mit viel Obst|Apfel|Birne||Fig"));
    DictionaryFiles files;
    files.add(pair_lines("Most", "cider"));
    EXPECT_EQ(dialogs.show_indirect(calls.LoadResource(module, resource)), four_times(extended));

    Supp_SetTranslationEnable(0);
    const std::wstring untranslated = L"Basket|Apple|Pear||Fig";
    EXPECT_EQ(dialogs.show(MAKEINTRESOURCEW(5), MAKEINTRESOURCEA(5)), four_times(untranslated));
    EXPECT_EQ(dialogs.show(L"CELLAR", "CELLAR"), four_times(untranslated));
}

TEST_ALONE(HookedDialogs, WithoutATemplateAreAnswered) {
    const FruitModule fruit("");
    const Calls calls = fruit.calls();
    const auto expect = [&](INT_PTR answer) {
        EXPECT_EQ(calls.DialogBoxParamW(fruit.get(), L"NOTHING", nullptr, looking, kModal), answer);
        EXPECT_EQ(calls.DialogBoxParamA(fruit.get(), "NOTHING", nullptr, looking, kModal), answer);
        EXPECT_EQ(calls.CreateDialogParamW(fruit.get(), L"NOTHING", nullptr, looking, kModeless), nullptr);
        EXPECT_EQ(calls.CreateDialogParamA(fruit.get(), "NOTHING", nullptr, looking, kModeless), nullptr);
    };
    const INT_PTR of_the_system = DialogBoxParamW(fruit.get(), L"NOTHING", nullptr, looking, kModal);
    ASSERT_NE(of_the_system, 0);
    expect(of_the_system);
    EXPECT_STREQ(Supp_Translate("no file"), L"no file"); // an entry, but no dictionary
    expect(of_the_system);
    DictionaryFiles files;
    ASSERT_EQ(files.add(""), 1);
    expect(0);
    Supp_SetTranslationEnable(0);
    expect(of_the_system);
}

std::string seen_creation_data;
WNDPROC edit_procedure;

// The class of edit controls with a look at what they are created with.
LRESULT CALLBACK edit_with_data(HWND window, UINT message, WPARAM w, LPARAM l) {
    if (message == WM_CREATE) {
        const auto* const data =
            static_cast<const char*>(reinterpret_cast<CREATESTRUCTW*>(l)->lpCreateParams);
        if (data != nullptr) seen_creation_data.assign(data, 6);
    }
    return CallWindowProcW(edit_procedure, window, message, w, l);
}

TEST_ALONE(HookedDialogs, KeepPlacesCreationDataAndStoredSizes) {
    HWND const any =
        CreateWindowExW(0, L"EDIT", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    edit_procedure = reinterpret_cast<WNDPROC>(
        SetClassLongPtrW(any, GCLP_WNDPROC, reinterpret_cast<LONG_PTR>(&edit_with_data)));
    const FruitModule fruit(kFruit);
    const Calls calls = fruit.calls();
    HMODULE const module = fruit.get();
    const auto create = [&](auto* function) {
        seen_creation_data.clear();
        HWND const dialog = function(module, L"CELLAR", nullptr, looking, kModeless);
        RECT all = {};
        GetClientRect(dialog, &all);
        EXPECT_EQ(GetWindowContextHelpId(dialog), 99u);
        EXPECT_TRUE(DestroyWindow(dialog));
        return all;
    };
    Supp_SetTranslationEnable(0);
    const RECT size = create(calls.CreateDialogParamW);
    const RECT check_box = last_seen.check_box;
    const std::string data = seen_creation_data;
    Supp_SetTranslationEnable(1);
    const RECT translated_size = create(calls.CreateDialogParamW);
    EXPECT_EQ(std::memcmp(&translated_size, &size, sizeof size), 0);
    EXPECT_EQ(std::memcmp(&last_seen.check_box, &check_box, sizeof check_box), 0);
    EXPECT_FALSE(data.empty());
    EXPECT_EQ(seen_creation_data, data);

    // Twice as large and wide, in the units of the dialog: the template says 120, 60 and 50, 14.
    const DictionaryFiles files;
    files.file(L"sizes.dlg",
               "[\\Dialogs\\mfc140u.dll#1#CELLAR\\Dialog Size]\r\n0=t0,0,240,120\r\n202=t5,20,105,34\r\n");
    EXPECT_EQ(Supp_AddWld(files.file(L"sizes.wld", "").c_str()), 1);
    const RECT larger = create(calls.CreateDialogParamW);
    EXPECT_NEAR(larger.right, 2 * size.right, 1);
    EXPECT_NEAR(larger.bottom, 2 * size.bottom, 1);
    EXPECT_EQ(last_seen.check_box.left, check_box.left);
    EXPECT_EQ(last_seen.check_box.bottom, check_box.bottom);
    EXPECT_NEAR(last_seen.check_box.right - check_box.left, 2 * (check_box.right - check_box.left), 1);
}

// --- message boxes

std::wstring last_box; // its text and its caption

std::wstring shown(int answer) {
    EXPECT_EQ(answer, IDOK);
    return std::exchange(last_box, {});
}

// Reads a message box as it opens and presses its button.
LRESULT CALLBACK read_box(int code, WPARAM w, LPARAM l) {
    HWND const window = reinterpret_cast<HWND>(w);
    if (code == HCBT_ACTIVATE && GetDlgItem(window, 0xFFFF) != nullptr) {
        wchar_t text[2000] = {};
        GetWindowTextW(GetDlgItem(window, 0xFFFF), text, 2000);
        last_box = std::wstring(text) + L"|" + text_of(window);
        PostMessageW(window, WM_COMMAND, IDOK, 0);
    }
    return CallNextHookEx(nullptr, code, w, l);
}

TEST_ALONE(HookedMessageBoxes, AreTranslated) {
    const FruitModule fruit(kFruit + pair_lines("Error", "Fehler"));
    HMODULE const module = fruit.get();
    const Calls calls = fruit.calls();
    HHOOK const hook = SetWindowsHookExW(WH_CBT, read_box, nullptr, GetCurrentThreadId());
    ASSERT_NE(hook, nullptr);
    const auto indirect = [&](const char* text, const char* caption) {
        MSGBOXPARAMSA box = {};
        box.cbSize = sizeof box;
        box.hInstance = module;
        box.lpszText = text;
        box.lpszCaption = caption;
        return calls.MessageBoxIndirectA(&box);
    };
    const std::string longer(1500, 'x');
    const std::wstring cut(1023, L'x');
    EXPECT_EQ(shown(calls.MessageBoxA(nullptr, "Apple", "Pear", MB_OK)), L"Apfel|Birne");
    EXPECT_EQ(shown(calls.MessageBoxA(nullptr, "Fig", nullptr, MB_OK)), L"Fig|Fehler");
    EXPECT_EQ(shown(calls.MessageBoxA(nullptr, longer.c_str(), "Pear", MB_OK)), cut + L"|Birne");
    EXPECT_EQ(shown(calls.MessageBoxExA(nullptr, "Apple", nullptr, MB_OK, 0)), L"Apfel|Fehler");
    EXPECT_EQ(shown(indirect("Apple", nullptr)), L"Apfel|Fehler");
    EXPECT_EQ(shown(indirect(MAKEINTRESOURCEA(1), MAKEINTRESOURCEA(40))), L"Apfel|Fig"); // of the module

    MSGBOXPARAMSW wide = {};
    wide.cbSize = sizeof wide;
    wide.lpszText = L"Apple";
    wide.lpszCaption = L"Pear";
    EXPECT_EQ(shown(MessageBoxInternalA(&wide, 1)), L"Apple|Pear");
    MSGBOXPARAMSA narrow = {};
    narrow.cbSize = sizeof narrow;
    narrow.lpszText = "Apple";
    narrow.lpszCaption = "Pear";
    EXPECT_EQ(shown(MessageBoxInternalA(&narrow, 0)), L"Apple|Pear");

    Supp_SetTranslationEnable(0);
    EXPECT_EQ(shown(calls.MessageBoxA(nullptr, "Apple", "Pear", MB_OK)), L"Apple|Pear");
    UnhookWindowsHookEx(hook);
}

} // namespace
