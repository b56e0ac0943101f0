// What the hooks alone use of translation.
#include "param/tree_walk.h"
#include "qzstring.h"
#include "supp/dialog_layout.h"
#include "supp/dictionary.h"
#include "supp/translate.h"
#include "supp/translation_context.h"
#include "supp/wide_hash.h"

#include <gtest/gtest.h>

#include <cstring>
#include <cwchar>
#include <string>

namespace {

using namespace qzr;

std::string or_none(const char* text) { return text != nullptr ? text : "(none)"; }

class Translation : public testing::Test {
protected:
    static void SetUpTestSuite() {
        Dictionary& dictionary = translation().dictionary;
        dictionary.add("Text", "Texte");
        dictionary.add("CtxText", "Texte choisi");
        dictionary.add("Hollow", "");
        dictionary.add("CtxHollow", "");
        dictionary.add("Two", "\x83\x5C\x83\x5C"); // two characters in code page 932
    }
};

TEST_F(Translation, FindsNarrowTextsInContexts) {
    const struct {
        const char* text;
        const char* context;
        const char* found;      // exactly
        const char* translated; // with what stands in for it
    } rows[] = {
        {"Text", nullptr, "Texte", "Texte"},     {"Text", "Ctx", "Texte choisi", "Texte choisi"},
        {"Text", "Other", "(none)", "Texte"},    {"Unknown", "Ctx", "(none)", "Unknown"},
        {"Hollow", nullptr, "Hollow", "Hollow"}, {"Hollow", "Ctx", "CtxHollow", "CtxHollow"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(or_none(find_translation(row.text, row.context)), row.found);
        EXPECT_EQ(or_none(translate(row.text, row.context)), row.translated);
        const CXStringW text(row.text);
        const CXStringW context(row.context);
        const wchar_t* const wide = find_translation(text.GetData(), wide_hash(context.GetData()));
        EXPECT_EQ(wide != nullptr ? CXString(wide).GetData() : std::string("(none)"), row.found);
    }
    EXPECT_EQ(translate("", "CtxText"), nullptr);
    EXPECT_EQ(translate(static_cast<const char*>(nullptr)), nullptr);
}

TEST_F(Translation, ReplacesTextsInPlace) {
    const bool double_byte = GetSystemMetrics(SM_DBCSENABLED) != 0;
    const struct {
        const char* text;
        unsigned size;
        const char* expected;
    } rows[] = {
        {"Text", 16, "Texte"},
        {"Text", 6, "Texte"},
        {"Text", 5, "Text"},
        {"Other", 16, "Other"},
        {"Hollow", 16, "Hollow"},
        {"Two", 5, "\x83\x5C\x83\x5C"},
        {"", 16, ""},
        {"Two", 4, double_byte ? "\x83\x5C" : "\x83\x5C\x83"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text + std::string(", ") + std::to_string(row.size));
        char buffer[17] = {};
        std::strcpy(buffer, row.text);
        std::memset(buffer + row.size, '#', sizeof buffer - row.size);
        EXPECT_EQ(translate_in_place(buffer, row.size), std::strlen(row.expected));
        EXPECT_STREQ(std::string(buffer, strnlen(buffer, row.size)).c_str(), row.expected);
        EXPECT_EQ(buffer[row.size], '#') << "nothing behind the buffer is touched";
    }
    char open_end[] = {'T', 'e', 'x', 't', 'x'};
    EXPECT_EQ(translate_in_place(open_end, 4), 3U) << "the text ends with the buffer";
    EXPECT_EQ(std::string(open_end, 5), std::string("Tex\0x", 5));
    EXPECT_EQ(translate_in_place(open_end, 0), 0U);
    EXPECT_EQ(translate_in_place(static_cast<char*>(nullptr), 5), 0U);

    wchar_t wide[8] = L"Text";
    EXPECT_EQ(translate_in_place(wide, 8), 5U);
    EXPECT_STREQ(wide, L"Texte");
    std::wcscpy(wide, L"Hollow");
    EXPECT_EQ(translate_in_place(wide, 8), 6U);
    wchar_t open_wide[] = {'T', 'e', 'x', 't', 'x'};
    EXPECT_EQ(translate_in_place(open_wide, 4), 3U);
    EXPECT_EQ(open_wide[4], L'x');
    EXPECT_EQ(translate_in_place(static_cast<wchar_t*>(nullptr), 5), 0U);
}

TEST(DictionaryClosed, KeepsTextsOutsideWithoutAddingThem) {
    Dictionary dictionary;
    dictionary.add("before", "avant");
    dictionary.set_closed_to_entries(true);
    dictionary.add("after", "apr\xE8s");
    EXPECT_FALSE(dictionary.find(wide_hash(L"after").hash));
    const DictionaryEntry outside = dictionary.find_or_add("after");
    EXPECT_STREQ(dictionary.wide_translation(outside), L"after");
    EXPECT_FALSE(dictionary.find(wide_hash(L"after").hash));
    EXPECT_NE(dictionary.find_or_add("after").wide, outside.wide);
    EXPECT_STREQ(dictionary.wide_translation(dictionary.find_or_add("before")), L"avant");
}

// Texts of every length, right before a page that cannot be read, at even and odd addresses.
TEST(WideHash, IsTheSumOfAllUnits) {
    constexpr std::size_t kPage = 4096;
    auto* const pages = static_cast<char*>(VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE, PAGE_NOACCESS));
    VirtualAlloc(pages, kPage, MEM_COMMIT, PAGE_READWRITE);
    std::wstring text;
    WideHash expected;
    for (unsigned n = 0; n < 100; ++n) {
        for (const std::size_t gap : {0, 1, 2, 40, 1000}) {
            const std::size_t size = (text.size() + 1) * sizeof(wchar_t);
            char* const place = pages + kPage - gap - size;
            std::memcpy(place, text.c_str(), size);
            const WideHash hash = wide_hash(reinterpret_cast<const wchar_t*>(place));
            EXPECT_EQ(hash.hash, expected.hash) << n << " units, " << gap;
            EXPECT_EQ(hash.power, expected.power) << n << " units, " << gap;
        }
        const auto unit = static_cast<wchar_t>(n % 3 == 0 ? 0xFFFF - n : 0x41 + n * 0x101);
        text += unit;
        expected = {expected.hash * 257 + unit, expected.power * 257};
    }
    VirtualFree(pages, 0, MEM_RELEASE);
}

std::string rect_text(const RECT* rect) {
    if (rect == nullptr) return "(none)";
    return std::to_string(rect->left) + "," + std::to_string(rect->top) + "," + std::to_string(rect->right) +
           "," + std::to_string(rect->bottom);
}

TEST(DialogLayouts, TakesRectanglesFromTheSectionDialogs) {
    CXString text(
        "[\\Dialogs\\App.exe#1#101\xFD\xFD\\Dialog Size]|0=t0,0,200,100|1000=s10, 20,60,34px|7=i5|"
        "8=t5,5,5,9|9=t0,0,40000,10|10=t-4,-4,1,1|11=s1,2|12=t0,0,1,1|012=t0,0,2,2|"
        "[\\Dialogs\\app.exe#1#ABOUT\\Dialog Size]|0=t0,0,50,40|"
        "[\\Dialogs\\app.exe#1#102]|0=t0,0,50,40|[\\Other\\app.exe#1#103\\Dialog Size]|0=t0,0,1,1|");
    const auto tree = CQZRef<IParam>::Adopt(new_MemParam());
    ASSERT_EQ(Param_String2Param(text, tree.Get()), 1);
    DialogLayouts layouts;
    EXPECT_EQ(layouts.find(L"app.exe", MAKEINTRESOURCEW(101)), nullptr);
    layouts.add(*tree);
    CXString later("[\\Dialogs\\app.exe#1#101\\Dialog Size]|0=t0,0,1,1|2=t0,0,9,9|");
    const auto second = CQZRef<IParam>::Adopt(new_MemParam());
    Param_String2Param(later, second.Get());
    layouts.add(*second);

    const DialogLayout* const dialog = layouts.find(L"app.exe", MAKEINTRESOURCEW(101));
    ASSERT_NE(dialog, nullptr);
    const struct {
        unsigned item;
        const char* rect;
    } rows[] = {
        {0, "0,0,200,100"}, {1000, "10,20,60,34"}, {7, "(none)"},   {8, "(none)"},  {9, "(none)"},
        {10, "-4,-4,1,1"},  {11, "(none)"},        {12, "0,0,1,1"}, {2, "0,0,9,9"}, {3, "(none)"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(rect_text(dialog->find(row.item)), row.rect) << "item " << row.item;
    const DialogLayout* const about = layouts.find(L"APP.EXE", L"About");
    ASSERT_NE(about, nullptr) << "names match whatever their case";
    EXPECT_EQ(rect_text(about->find(0)), "0,0,50,40");
    EXPECT_EQ(layouts.find(L"app.exe", MAKEINTRESOURCEW(102)), nullptr);
    EXPECT_EQ(layouts.find(L"app.exe", MAKEINTRESOURCEW(103)), nullptr);
    EXPECT_EQ(layouts.find(L"other.exe", MAKEINTRESOURCEW(101)), nullptr);
}

} // namespace
