// Searching and replacing what was found.
#include "string_kinds.h"

namespace {

template <class Kind>
class StringSearch : public testing::Test {};
TYPED_TEST_SUITE(StringSearch, BothKinds, KindNames);

const std::string kLong = std::string(990, '-') + "needle" + std::string(100, '+');

TYPED_TEST(StringSearch, FindsTexts) {
    const struct {
        std::string text;
        const char* wanted;
        int start, found;
    } rows[] = {
        {"", "", 0, -1},        {"", "a", 0, -1},          {"abc", "", 0, 0},          {"abc", "", 2, 2},
        {"abc", "", 9, 3},      {"abc", "", -1, 3},        {"abc", "b", 0, 1},         {"abc", "bc", 1, 1},
        {"abc", "abcd", 0, -1}, {"abc", "b", 2, -1},       {"abc", "b", -5, -1},       {"abab", "ab", 1, 2},
        {"aaab", "aab", 0, 1},  {kLong, "needle", 0, 990}, {kLong, "needle", 991, -1}, {kLong, "e+", 0, 995},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text.substr(0, 20) + " | " + row.wanted + " from " + std::to_string(row.start));
        const auto s = string_of<TypeParam>(row.text);
        EXPECT_EQ(s.Find(text<TypeParam>(row.wanted).c_str(), row.start), row.found);
    }
    const typename TypeParam::Unit* const null = nullptr;
    EXPECT_EQ(string_of<TypeParam>("abc").Find(null, 0), -1);
}

TYPED_TEST(StringSearch, FindsCharactersAndSets) {
    using Unit = typename TypeParam::Unit;
    const struct {
        const char* text;
        const char* set; // the first character alone for Find and FindRev
        int start, found, on_of, last, last_on_of;
    } rows[] = {
        {"", "a", 0, -1, -1, -1, -1},   {"abc", "a", 0, 0, 0, 0, 0},    {"abc", "cb", 0, 2, 1, 2, 2},
        {"abcabc", "b", 2, 4, 4, 4, 4}, {"abc", "b", 2, -1, -1, 1, 1},  {"abc", "xyz", 0, -1, -1, -1, -1},
        {"abc", "b", 99, -1, -1, 1, 1}, {"abc", "b", -1, -1, -1, 1, 1}, {"a.b/c\\d", "/\\", 0, 3, 3, 3, 5},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.text) + " | " + row.set + " from " + std::to_string(row.start));
        const auto s = string_of<TypeParam>(row.text);
        const auto set = text<TypeParam>(row.set);
        const auto c = static_cast<wchar_t>(static_cast<Unit>(row.set[0]));
        EXPECT_EQ(s.Find(c, row.start), row.found);
        EXPECT_EQ(s.FindOnOf(set.c_str(), row.start), row.on_of);
        EXPECT_EQ(s.FindRev(c), row.last);
        EXPECT_EQ(s.FindRevOnOf(set.c_str()), row.last_on_of);
    }
    const auto s = string_of<TypeParam>("abc");
    const Unit nothing[] = {0};
    const Unit* const null = nullptr;
    EXPECT_EQ(s.FindOnOf(nothing, 0), -1);
    EXPECT_EQ(s.FindRevOnOf(nothing), -1);
    EXPECT_EQ(s.FindOnOf(null, 0), -1);
    EXPECT_EQ(s.FindRevOnOf(null), -1);
}

TYPED_TEST(StringSearch, ReplacesTheFirstOccurrenceOnly) {
    const struct {
        const char *text, *find, *by, *result;
        int replaced;
    } rows[] = {
        {"aaa", "a", "bb", "bbaa", 1}, {"ccc", "a", "bb", "ccc", 0},    {"", "a", "b", "", 0},
        {"abc", "bc", "", "a", 1},     {"abc", "abc", "xyz", "xyz", 1}, {"abab", "b", "", "aab", 1},
        {"abc", "c", "cd", "abcd", 1}, {"abc", "", "x", "xabc", 1},     {"abc", "abcd", "x", "abc", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.text) + " | " + row.find + " -> " + row.by);
        const auto find = text<TypeParam>(row.find);
        const auto by = text<TypeParam>(row.by);
        auto s = string_of<TypeParam>(row.text);
        EXPECT_EQ(s.FindReplace(find.c_str(), by.c_str()), row.replaced);
        EXPECT_EQ(narrow(s.GetData()), row.result);
        if (find.size() > 1 || by.size() > 1) continue;
        // The same with characters, where a text is one.
        const wchar_t find_c = static_cast<wchar_t>(find[0]), by_c = static_cast<wchar_t>(by[0]);
        auto a = string_of<TypeParam>(row.text), b = a, c = a;
        EXPECT_EQ(a.FindReplace(find.c_str(), by_c), row.replaced);
        EXPECT_EQ(b.FindReplace(find_c, by.c_str()), row.replaced);
        EXPECT_EQ(c.FindReplace(find_c, by_c), row.replaced);
        for (const auto* result : {&a, &b, &c})
            EXPECT_EQ(narrow(result->GetData()), row.result);
    }
}

TEST(NarrowSearch, ReplacesDoubleByteCharacters) {
    if (!applies(Page::k932)) { // the high byte is no lead byte there and is dropped
        CXString s("a\\b");
        EXPECT_EQ(s.FindReplace(wchar_t{0x835C}, wchar_t{0x8378}), 1);
        EXPECT_STREQ(s.GetData(), "axb");
        return;
    }
    CXString s("\x83\\a\\");
    EXPECT_EQ(s.FindReplace(L'\\', wchar_t{0x8283}), 1);
    EXPECT_STREQ(s.GetData(), "\x83\\a\x82\x83");
    EXPECT_EQ(s.FindReplace(wchar_t{0x835C}, "xyz"), 1);
    EXPECT_STREQ(s.GetData(), "xyza\x82\x83");
}

TEST(WideSearch, FindsWithoutCaseFromTheStart) {
    const struct {
        const wchar_t *text, *wanted;
        int found;
    } rows[] = {
        {L"abcDEF", L"CdE", 2}, {L"abc", L"ABC", 0}, {L"abc", L"x", -1},
        {L"", L"a", -1},        {L"abc", L"", -1},   {L"abc", nullptr, -1},
    };
    for (const auto& row : rows) {
        const CXStringW s(row.text);
        EXPECT_EQ(s.FindI(row.wanted), row.found) << narrow(row.text);
        EXPECT_STREQ(s.GetData(), row.text);
    }
}

TEST(WideSearch, TakesNullTexts) {
    CXStringW s(L"abc");
    const wchar_t* const null = nullptr;
    EXPECT_EQ(s.FindReplace(null, L"x"), 0);
    EXPECT_EQ(s.FindReplace(null, L'x'), 0);
    EXPECT_EQ(s.FindReplace(L"b", null), 1);
    EXPECT_STREQ(s.GetData(), L"ac");
}

} // namespace
