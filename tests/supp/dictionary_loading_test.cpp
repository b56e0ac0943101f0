// Loading dictionaries: files that are missing, the first success, languages and their code pages.
#include "dictionary_files.h"

#include "support/child_process.h"
#include "support/import_mock.h"

#include "qzexception.h"
#include "qzstring.h"
#include "qzsupp.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <new>
#include <vector>

#include <windows.h>

namespace {

std::wstring translated(const wchar_t* text) { return Supp_Translate(text); }

TEST_ALONE(DictionaryLoading, NeedsBothFiles) {
    const DictionaryFiles files;
    EXPECT_EQ(Supp_Init(files.path(L"none.wld").c_str()), 0);
    EXPECT_EQ(Supp_Init(files.path().c_str()), 0) << "a directory";
    EXPECT_STREQ(Supp_Translate(L"one"), L"one") << "the dictionary is empty";

    const std::wstring path =
        files.file(L"a.b.wld", pair_lines("QZ_WLD_LANG_ID", "1049") + pair_lines("one", "un"));
    EXPECT_EQ(Supp_Init(path.c_str()), 0) << "without companion";
    EXPECT_EQ(translated(L"one"), L"un") << "what was read stays";
    EXPECT_EQ(Supp_GetACP(), 1251U);
    EXPECT_EQ(Supp_AddWld(path.c_str()), 0);

    files.file(L"a.b.dlg", "");
    EXPECT_EQ(Supp_Init(path.c_str()), 1) << "a failed load may be repeated";
}

TEST_ALONE(DictionaryLoading, LoadsTheFirstOnce) {
    DictionaryFiles files;
    EXPECT_EQ(files.add(pair_lines("one", "un")), 1) << "adding is initialising at first";
    files.file(L"next.dlg", "");
    const std::wstring next = files.file(L"next.wld", pair_lines("one", "eins") + pair_lines("two", "zwei"));
    EXPECT_EQ(Supp_Init(next.c_str()), 0);
    EXPECT_EQ(translated(L"two"), L"two") << "the file was not looked at";
    EXPECT_EQ(Supp_AddWld(next.c_str()), 1);
    EXPECT_EQ(translated(L"one"), L"un");
    EXPECT_EQ(translated(L"two"), L"zwei");
}

int requests_left = 0; // until there is no memory any more

void* new_while_there_is(std::size_t size) {
    if (requests_left-- <= 0) throw std::bad_alloc();
    return ::operator new(size);
}

TEST_ALONE(DictionaryLoading, FailsWithoutMemoryForItsCompanion) {
    const DictionaryFiles files;
    const std::wstring path = files.file(L"both.wld", pair_lines("both", "deux"));
    files.file(L"both.dlg", "[\\Dialogs\\one]\r\nwidth=i1\r\n");
    int loaded = 0;
    for (int requests = 0; loaded == 0; ++requests) {
        SCOPED_TRACE(requests);
        const ImportMock memory("qzrcore.dll", "_Znwy", reinterpret_cast<void*>(&new_while_there_is));
        requests_left = requests;
        try {
            loaded = Supp_AddWld(path.c_str());
        } catch (const CXMemException&) {
        }
        ASSERT_EQ(loaded, requests_left >= 0 ? 1 : 0);
    }
}

TEST_ALONE(DictionaryLoading, TakesAppWldFromTheCurrentDirectory) {
    const DictionaryFiles files;
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(files.path());
    EXPECT_EQ(Supp_Init(nullptr), 0);
    files.file(L"app.wld", pair_lines("one", "un"));
    files.file(L"app.dlg", "");
    EXPECT_EQ(Supp_Init(nullptr), 1);
    std::filesystem::current_path(before);
    EXPECT_EQ(translated(L"one"), L"un");
}

std::string language(const char* id) { return pair_lines("QZ_WLD_LANG_ID", id); }

// 0 stands for the system's code page.
const struct {
    std::string file;
    unsigned long code_page;
} kLanguages[] = {
    {pair_lines("one", "un"), 0},
    {language("1049"), 1251},
    {language("1041"), 932},
    {language(" 1033 and more"), 1252},
    {language("1049") + language("1033"), 1252}, // the last one wins
    {language("1049") + language("none"), 0},
    {language("0"), 0},
    {language("-1"), 0},
    {language("65000"), 0},
    {language("99999999999999999999"), 0},
    {pair_lines("qz_wld_lang_id", "1049"), 0},
    {pair_lines("QZ_WLD_LANG_ID\\", "1049"), 0}, // compared as it stands in the file
    {"\"1049\"\n\"QZ_WLD_LANG_ID\"\n", 0},
    {"\"one\"\n\"1049\"\n\"QZ_WLD_LANG_ID\"", 1251}, // without partner: it has the one before
};

TEST(DictionaryLoading, TakesTheCodePageOfTheLanguage) {
    for (int row = 0; row < static_cast<int>(std::size(kLanguages)); ++row)
        expect_passes_alone("DictionaryLoading.DISABLED_TakesTheCodePageOfTheLanguage", row);
}
TEST(DictionaryLoading, DISABLED_TakesTheCodePageOfTheLanguage) {
    const auto& row = kLanguages[std::stoi(child_argument())];
    DictionaryFiles files;
    EXPECT_EQ(Supp_GetACP(), 0U);
    EXPECT_EQ(files.add(row.file), 1);
    EXPECT_EQ(Supp_GetACP(), row.code_page) << row.file;
}

TEST_ALONE(DictionaryLoading, ConvertsWithTheCodePageOfItsTime) {
    DictionaryFiles files;
    const std::string e_narrow = "\xFD"; // the letter e of code page 1251
    const CXStringW e_system(e_narrow.c_str());
    EXPECT_EQ(files.add(language("1049") + language("1033") + pair_lines("key " + e_narrow, e_narrow) +
                        language("1049") + pair_lines("seen", e_narrow)),
              1);
    EXPECT_EQ(translated(L"QZ_WLD_LANG_ID"), L"1049") << "the first is kept as an entry";
    const CXStringW key = CXStringW(L"key ") + e_system;
    EXPECT_EQ(translated(key), L"\x044D") << "keys of this file were converted before, translations after";
    EXPECT_STREQ(Supp_Translate("\xFD"), L"\x044D");
    EXPECT_EQ(CXStringW("\xFD"), L"\x044D") << "all narrow text follows";
    EXPECT_EQ(files.add(pair_lines("later " + e_narrow, "x") + language("1033")), 1);
    EXPECT_EQ(translated(L"later \x044D"), L"x");
    EXPECT_EQ(translated(key), L"\x044D") << "converted once and kept";
    EXPECT_EQ(translated(L"seen"), L"\x00FD") << "converted when first asked for";
}

} // namespace
