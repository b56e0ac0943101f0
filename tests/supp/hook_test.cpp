// Hooked modules without windows: installation, strings, resources. What needs a dictionary of its own runs
// in a process of its own.
#include "qzstring.h"
#include "qzsupp.h"

#include "supp/dictionary_files.h"
#include "supp/fruit_module.h"
#include "support/child_process.h"
#include "support/image_imports.h"
#include "support/import_mock.h"

#include <gtest/gtest.h>

#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

namespace {

using test::import_slots;
using test::ImportSlots;

std::size_t changed(const ImportSlots& before, HMODULE module) {
    std::size_t count = 0;
    for (const auto& [slot, function] : import_slots(module))
        count += before.at(slot) != function;
    return count;
}

const std::string kFruit = pair_lines("Apple", "Apfel") + pair_lines("Pear", "Birne") +
                           pair_lines("Basket", "Ein Korb mit viel Obst");

TEST(Hooks, EveryReplacedFunctionIsPatchedAndRestored) {
    const FruitModule fruit("", FruitModule::State::as_it_is);
    HMODULE const library = GetModuleHandleA("qzrcore.dll");
    const ImportSlots before = import_slots(fruit.get());
    const ImportSlots library_before = import_slots(library);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(Supp_InitResTranslation(fruit.get()), 1);
        EXPECT_EQ(changed(before, fruit.get()), FruitModule::kFunctions);
        EXPECT_EQ(_InitResTranslation(fruit.get()), 1); // nothing is left to patch
        EXPECT_EQ(changed(before, fruit.get()), FruitModule::kFunctions);
        EXPECT_EQ(_DeInitResTranslation(fruit.get()), 1);
        EXPECT_EQ(changed(before, fruit.get()), 0u);
    }
    EXPECT_EQ(Supp_InitResTranslation(nullptr), 0);
    EXPECT_EQ(_InitResTranslation(nullptr), 0);
    EXPECT_EQ(_InitResTranslation(library), 1);
    EXPECT_EQ(changed(library_before, library), 0u);
}

// A module without sound headers: the slots of the unhooked functions are empty then, and modules that were
// hooked before still reach the system.
TEST(Hooks, AFailedInstallationBreaksNothing) {
    const FruitModule fruit("");
    alignas(8) static char no_image[4096] = {};
    EXPECT_EQ(_InitResTranslation(reinterpret_cast<HINSTANCE>(no_image)), 1);
    wchar_t text[16] = {};
    EXPECT_EQ(fruit.calls().LoadStringW(fruit.get(), 1, text, 16), 5);
    EXPECT_STREQ(text, L"Apple");
    EXPECT_EQ(LoadStringNotTransW(fruit.get(), 2, text, 16), 4);
    _DeInitResTranslation(fruit.get());
}

TEST_ALONE(Hooks, ADictionaryHooksTheModulesOfTheList) {
    HMODULE const other = LoadLibraryA("hook_target.dll");
    const ImportSlots other_before = import_slots(other);
    const ImportSlots program_before = import_slots(GetModuleHandleA(nullptr));
    const FruitModule fruit("", FruitModule::State::as_it_is);
    const ImportSlots before = import_slots(fruit.get());
    const DictionaryFiles files;
    EXPECT_EQ(Supp_Init(files.file(L"alone.wld", kFruit).c_str()), 0); // the companion file is missing
    EXPECT_EQ(changed(before, fruit.get()), 0u);
    files.file(L"alone.dlg", "");
    EXPECT_EQ(Supp_Init(files.path(L"alone.wld").c_str()), 1);
    EXPECT_EQ(changed(before, fruit.get()), FruitModule::kFunctions);
    EXPECT_EQ(changed(other_before, other), 0u);
    EXPECT_EQ(changed(program_before, GetModuleHandleA(nullptr)), 0u);
    char text[16] = {};
    EXPECT_EQ(fruit.calls().LoadStringA(fruit.get(), 1, text, 16), 5);
    EXPECT_STREQ(text, "Apfel");
}

// --- strings

struct StringRow {
    const char* name;
    std::string pairs;
    unsigned id;
    int size;
    int result;
    const wchar_t* buffer; // all of it: "?" is what nobody wrote, "0" a zero
};

const std::vector<StringRow>& string_rows() {
    static const std::vector<StringRow> rows = {
        {"translated", kFruit, 1, 8, 5, L"Apfel000"},
        {"no entry: as the system left it", kFruit, 40, 8, 3, L"Fig0????"},
        {"missing string", kFruit, 99, 8, 0, nullptr},
        {"in the context of its block", in_context(3, "1", "Pear", "eins") + kFruit, 2, 8, 4, L"eins0000"},
        {"the next block", in_context(3, "2", "Pear", "zwei") + kFruit, 17, 8, 4, L"zwei0000"},
        {"another block's context", in_context(3, "2", "Pear", "zwei") + kFruit, 2, 8, 5, L"Birne000"},
        {"cut, without a zero, and the whole length", pair_lines("Fig", "Feigenbaum"), 40, 8, 10,
         L"Feigenba"},
        {"cut before it is looked up", pair_lines("Pea", "Erbse"), 2, 4, 5, L"Erbs????"},
        {"an empty translation", pair_lines("Fig", ""), 40, 8, 3, L"Fig0????"},
        // The entry translates to its own source, and that is the whole key.
        {"an empty translation in a context", in_context(3, "3", "Fig", ""), 40, 22, 20,
         L"mfc140u.dll#3#3\x44D\x44D"
         L"Fig00"},
    };
    return rows;
}

TEST(HookedStrings, AreTranslated) {
    for (std::size_t row = 0; row < string_rows().size(); ++row)
        expect_passes_alone("HookedStrings.DISABLED_AreTranslated", static_cast<int>(row));
}
TEST(HookedStrings, DISABLED_AreTranslated) {
    const StringRow& row = string_rows().at(static_cast<std::size_t>(std::stoi(child_argument())));
    SCOPED_TRACE(row.name);
    const FruitModule fruit(row.pairs);
    const auto shown = [](auto unit) { return unit == 0 ? L'0' : static_cast<wchar_t>(unit); };

    std::wstring wide(24, L'?');
    EXPECT_EQ(fruit.calls().LoadStringW(fruit.get(), row.id, wide.data(), row.size), row.result);
    for (wchar_t& unit : wide)
        unit = shown(unit);
    if (row.buffer != nullptr) {
        EXPECT_EQ(wide.substr(0, std::wcslen(row.buffer)), row.buffer);
    }
    EXPECT_EQ(wide.substr(static_cast<std::size_t>(row.size)),
              std::wstring(24 - static_cast<std::size_t>(row.size), L'?'));

    std::string narrow(24, '?');
    EXPECT_EQ(fruit.calls().LoadStringA(fruit.get(), row.id, narrow.data(), row.size), row.result);
    for (std::size_t i = 0; row.buffer != nullptr && i < std::wcslen(row.buffer); ++i) {
        const wchar_t expected = row.buffer[i] == 0x44D ? 0xFD : row.buffer[i];
        EXPECT_EQ(shown(static_cast<unsigned char>(narrow[i])), expected) << i;
    }
    EXPECT_EQ(narrow.substr(static_cast<std::size_t>(row.size)),
              std::string(24 - static_cast<std::size_t>(row.size), '?'));
}

TEST_ALONE(HookedStrings, AreLeftAloneOnRequest) {
    const FruitModule fruit(kFruit);
    HMODULE const module = fruit.get();
    wchar_t wide[16] = {};
    char narrow[16] = {};
    EXPECT_EQ(LoadStringNotTransW(module, 2, wide, 16), 4);
    EXPECT_STREQ(wide, L"Pear");
    EXPECT_EQ(_LoadStringNotTrans(module, 2, narrow, 16), 4);
    EXPECT_STREQ(narrow, "Pear");

    // A size of 0 asks for a pointer to the resource itself, which has no zero at its end.
    const wchar_t* resource = nullptr;
    EXPECT_EQ(fruit.calls().LoadStringW(module, 2, reinterpret_cast<wchar_t*>(&resource), 0), 4);
    ASSERT_NE(resource, nullptr);
    EXPECT_EQ(std::wcsncmp(resource, L"Pear", 4), 0);

    Supp_SetTranslationEnable(0);
    EXPECT_EQ(fruit.calls().LoadStringW(module, 2, wide, 16), 4);
    EXPECT_STREQ(wide, L"Pear");
    CXString text;
    EXPECT_EQ(text.Load(module, 2), 1);
    EXPECT_STREQ(text.GetData(), "Pear");
    Supp_SetTranslationEnable(1);
    EXPECT_EQ(text.Load(module, 2), 1);
    EXPECT_STREQ(text.GetData(), "Birne");
    CXStringW wide_text;
    EXPECT_EQ(wide_text.Load(module, 2), 1);
    EXPECT_STREQ(wide_text.GetData(), L"Birne");
}

// Strings ask again until the translation fits, and never read past what was copied.
TEST_ALONE(HookedStrings, LoadThemselvesWhateverTheLength) {
    const std::string twice_the_room(600, 'x');
    const std::string longest(8190, 'y');
    const FruitModule fruit(pair_lines("Pear", twice_the_room) + pair_lines("Fig", longest));
    const struct {
        unsigned id;
        const std::string& text;
    } rows[] = {{2, twice_the_room}, {40, longest}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.id);
        CXStringW wide;
        EXPECT_EQ(wide.Load(fruit.get(), row.id), 1);
        EXPECT_EQ(wide.GetData(), std::wstring(row.text.begin(), row.text.end()));
        CXString narrow;
        EXPECT_EQ(narrow.Load(fruit.get(), row.id), 1);
        EXPECT_EQ(narrow.GetData(), row.text);
    }
}

// --- resources

bool has(const void* data, std::size_t size, const wchar_t* text) {
    const std::string bytes(static_cast<const char*>(data), size);
    return bytes.find(std::string(reinterpret_cast<const char*>(text), std::wcslen(text) * 2 + 2)) !=
           bytes.npos;
}

TEST_ALONE(HookedResources, DialogTemplatesAreServedTranslated) {
    const FruitModule fruit(kFruit + in_context(1, "5", "Apple", "Boskop") +
                            in_context(1, "CELLAR", "Apple", "Most"));
    HMODULE const module = fruit.get();
    const Calls calls = fruit.calls();
    const WORD neutral = MAKELANGID(LANG_NEUTRAL, SUBLANG_NEUTRAL);
    const wchar_t* const five = MAKEINTRESOURCEW(5);
    const char* const narrow_five = MAKEINTRESOURCEA(5);
    const struct {
        const char* name;
        HRSRC resource;
        const wchar_t* apple;
    } rows[] = {
        {"wide", calls.FindResourceW(module, five, MAKEINTRESOURCEW(5)), L"Boskop"},
        {"wide, name and type spelled", calls.FindResourceW(module, L"CELLAR", L"#5"), L"Most"},
        {"narrow", calls.FindResourceA(module, narrow_five, MAKEINTRESOURCEA(5)), L"Boskop"},
        {"narrow, by name", calls.FindResourceA(module, "CELLAR", MAKEINTRESOURCEA(5)), L"Most"},
        {"wide with a language", calls.FindResourceExW(module, MAKEINTRESOURCEW(5), five, neutral),
         L"Boskop"},
        {"narrow with a language", calls.FindResourceExA(module, "#5", "CELLAR", neutral), L"Most"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ASSERT_NE(row.resource, nullptr);
        const DWORD original_size = SizeofResource(module, row.resource);
        const void* const original = LockResource(LoadResource(module, row.resource));

        HGLOBAL const loaded = calls.LoadResource(module, row.resource);
        const DWORD size = calls.SizeofResource(module, row.resource);
        const void* const data = calls.LockResource(loaded);
        EXPECT_NE(data, original);
        EXPECT_GT(size, original_size);
        EXPECT_EQ(LockResource(loaded), data); // where no hook reaches
        EXPECT_TRUE(has(data, size, row.apple));
        EXPECT_TRUE(has(data, size, L"Birne"));
        EXPECT_TRUE(has(data, size, L"Ein Korb mit viel Obst"));
        EXPECT_TRUE(has(data, size, L"Fig"));
        EXPECT_FALSE(has(data, size, L"Pear"));
        EXPECT_TRUE(has(original, original_size, L"Pear"));

        // Freed twice, used on, loaded again: it is the same copy.
        EXPECT_FALSE(calls.FreeResource(loaded));
        EXPECT_FALSE(calls.FreeResource(loaded));
        EXPECT_TRUE(has(data, size, row.apple));
        EXPECT_EQ(calls.LoadResource(module, row.resource), loaded);

        Supp_SetTranslationEnable(0);
        EXPECT_EQ(calls.LockResource(calls.LoadResource(module, row.resource)), original);
        EXPECT_EQ(calls.SizeofResource(module, row.resource), original_size);
        EXPECT_EQ(calls.LockResource(loaded), data);
        Supp_SetTranslationEnable(1);
    }
    // What a later dictionary adds is in the next copy; the one before stays.
    const void* const before = calls.LoadResource(module, rows[0].resource);
    DictionaryFiles files;
    files.add(pair_lines("Fig", "Feige"));
    const void* const after = calls.LoadResource(module, rows[0].resource);
    EXPECT_NE(before, after);
    EXPECT_TRUE(has(before, calls.SizeofResource(module, rows[0].resource) - 4, L"Fig"));
    EXPECT_TRUE(has(after, calls.SizeofResource(module, rows[0].resource), L"Feige"));
}

TEST(HookedResources, OthersAreTheSystems) {
    const FruitModule fruit("");
    const Calls calls = fruit.calls();
    HRSRC const raw = calls.FindResourceW(fruit.get(), MAKEINTRESOURCEW(9), MAKEINTRESOURCEW(10));
    ASSERT_NE(raw, nullptr);
    EXPECT_EQ(calls.LoadResource(fruit.get(), raw), LoadResource(fruit.get(), raw));
    EXPECT_EQ(calls.SizeofResource(fruit.get(), raw), 5u);
    SetLastError(0);
    EXPECT_EQ(calls.FindResourceW(fruit.get(), L"NOTHING", MAKEINTRESOURCEW(5)), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_NAME_NOT_FOUND));
    // Untranslated templates are those of the module.
    HRSRC const dialog = calls.FindResourceW(fruit.get(), MAKEINTRESOURCEW(5), MAKEINTRESOURCEW(5));
    EXPECT_EQ(calls.LoadResource(fruit.get(), dialog), LoadResource(fruit.get(), dialog));
    _DeInitResTranslation(fruit.get());
}

} // namespace
