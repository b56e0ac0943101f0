// Editing: ranges, inserting, trimming, case.
#include "string_kinds.h"

#include <climits>

namespace {

template <class Kind>
class StringEditing : public testing::Test {};
TYPED_TEST_SUITE(StringEditing, BothKinds, KindNames);

TYPED_TEST(StringEditing, NamesARangeByPositionAndCount) {
    const struct {
        const char* text;
        int pos, count;
        const char *range, *rest; // `rest` also stands for Replace by "": nothing
    } rows[] = {
        {"", 0, 1, "", ""},
        {"abcdef", 0, 0, "", "abcdef"},
        {"abcdef", 0, 2, "ab", "cdef"},
        {"abcdef", 2, 3, "cde", "abf"},
        {"abcdef", 5, 99, "f", "abcde"},
        {"abcdef", 5, -2, "de", "abcf"},
        {"abcdef", 2, -5, "ab", "cdef"},
        {"abcdef", 99, -1, "f", "abcde"},
        {"abcdef", -1, -2, "ef", "abcd"},
        {"abcdef", -1, 2, "", "abcdef"},
        {"abcdef", 1, INT_MAX, "bcdef", "a"},
        {"abcdef", 1, INT_MIN, "a", "bcdef"},
        {"abcdef", INT_MAX, INT_MIN, "abcdef", ""},
        {"abcdef", INT_MIN, INT_MAX, "", "abcdef"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.text) + " " + std::to_string(row.pos) + ", " +
                     std::to_string(row.count));
        const std::string range = row.range;
        auto s = string_of<TypeParam>(row.text);
        auto out = string_of<TypeParam>("old");
        EXPECT_EQ(s.Extract(row.pos, row.count, out), static_cast<int>(range.size()));
        EXPECT_EQ(narrow(out.GetData()), range);
        EXPECT_EQ(narrow(s.GetData()), row.text);
        if (range.empty()) {
            EXPECT_EQ(out.GetAllocSize(), 0);
        }

        auto replaced = s;
        EXPECT_EQ(&replaced.Replace(row.pos, row.count, text<TypeParam>("XY").c_str()), &replaced);
        std::string expected = row.text;
        if (!range.empty()) expected.replace(expected.find(range), range.size(), "XY");
        EXPECT_EQ(narrow(replaced.GetData()), expected);
        replaced.Replace(row.pos, row.count, text<TypeParam>("").c_str());
        EXPECT_EQ(narrow(replaced.GetData()), expected) << "an empty text must not delete";

        auto extracted = s;
        EXPECT_EQ(extracted.Extract(row.pos, row.count), static_cast<int>(range.size()));
        EXPECT_EQ(narrow(extracted.GetData()), range);

        EXPECT_EQ(&s.Delete(row.pos, row.count), &s);
        EXPECT_EQ(narrow(s.GetData()), row.rest);
    }
}

TYPED_TEST(StringEditing, Inserts) {
    const struct {
        const char* text;
        int pos;
        const char *s, *result;
    } rows[] = {
        {"", 0, "x", "x"},         {"abc", 0, "xy", "xyabc"},     {"abc", 1, "xy", "axybc"},
        {"abc", 3, "xy", "abcxy"}, {"abc", 99, "x", "abcx"},      {"abc", -1, "x", "abcx"},
        {"abc", 1, "", "abc"},     {"abc", INT_MIN, "x", "abcx"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.text) + " " + std::to_string(row.pos) + " " + row.s);
        auto s = string_of<TypeParam>(row.text);
        EXPECT_EQ(&s.Insert(row.pos, text<TypeParam>(row.s).c_str()), &s);
        EXPECT_EQ(narrow(s.GetData()), row.result);
        if (std::strlen(row.s) > 1) continue;
        auto by_character = string_of<TypeParam>(row.text);
        by_character.Insert(row.pos, static_cast<wchar_t>(row.s[0]));
        EXPECT_EQ(narrow(by_character.GetData()), row.result);
    }
    const typename TypeParam::Unit* const null = nullptr;
    auto s = string_of<TypeParam>("abc");
    s.Insert(1, null).Replace(0, 2, null);
    EXPECT_EQ(narrow(s.GetData()), "abc");
    EXPECT_EQ(s.GetAllocSize(), (3 + TypeParam::kCopyExtra) * TypeParam::kUnit);
}

TYPED_TEST(StringEditing, TrimsWhiteSpace) {
    const struct {
        const char *text, *left, *right;
    } rows[] = {
        {"", "", ""},
        {"abc", "abc", "abc"},
        {"  a b  ", "a b  ", "  a b"},
        {"\t\n\v\f\r x\t\n\v\f\r ", "x\t\n\v\f\r ", "\t\n\v\f\r x"},
        {" \t ", "", ""},
        {"\b", "\b", "\b"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        auto left = string_of<TypeParam>(row.text), right = left;
        left.TrimLeft();
        right.TrimRight();
        EXPECT_EQ(narrow(left.GetData()), row.left);
        EXPECT_EQ(narrow(right.GetData()), row.right);
    }
}

TYPED_TEST(StringEditing, MapsCaseOfASCII) {
    const std::string mixed = "@AZ[`az{ The Quick Brown Fox Jumps 0123456789";
    const std::string upper = "@AZ[`AZ{ THE QUICK BROWN FOX JUMPS 0123456789";
    const std::string lower = "@az[`az{ the quick brown fox jumps 0123456789";
    for (std::size_t n = 0; n <= mixed.size(); ++n) {
        auto s = string_of<TypeParam>(mixed.substr(0, n));
        const auto untouched = s;
        s.Upper();
        ASSERT_EQ(narrow(s.GetData()), upper.substr(0, n));
        s.Lower();
        ASSERT_EQ(narrow(s.GetData()), lower.substr(0, n));
        ASSERT_EQ(narrow(untouched.GetData()), mixed.substr(0, n));
    }
}

TYPED_TEST(StringEditing, TrimmingAndCaseMappingEndTheWriting) {
    using String = typename TypeParam::String;
    const struct {
        const char* what;
        void (String::*member)();
    } rows[] = {{"TrimLeft", &String::TrimLeft},
                {"TrimRight", &String::TrimRight},
                {"Upper", &String::Upper},
                {"Lower", &String::Lower}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Open<TypeParam> s("abc");
        s.GetBuffer(100);
        (s.*row.member)();
        EXPECT_EQ(s.count(), 1);
        EXPECT_EQ(s.GetAllocSize(), 101 * TypeParam::kUnit);
    }
}

TEST(NarrowEditing, CaseMappingLeavesTrailBytesAlone) {
    const struct {
        Page page;
        const char *text, *upper;
    } rows[] = {
        {Page::k932, "ab\x83\x61z", "AB\x83\x61Z"},
        {Page::k932, "ab\x83", "AB\x83"},
        {Page::k932, "\x83\x61\x83", "\x83\x61\x83"},
        {Page::kSingleByte, "ab\x83z", "AB\x83Z"},
    };
    for (const auto& row : rows) {
        if (!applies(row.page)) continue;
        SCOPED_TRACE(row.text);
        CXString s(row.text);
        s.Upper();
        EXPECT_STREQ(s.GetData(), row.upper);
    }
}

TEST(NarrowEditing, InsertsDoubleByteCharacters) {
    CXString s("ab");
    s.Insert(1, wchar_t{0x835C});
    EXPECT_STREQ(s.GetData(), applies(Page::k932) ? "a\x83\\b" : "a\\b");
    s.Insert(1, wchar_t{0x6162});
    EXPECT_STREQ(s.GetData(), applies(Page::k932) ? "ab\x83\\b" : "ab\\b");
}

TEST(WideEditing, TrimsWhatTheRuntimeCallsSpace) {
    CXStringW s(L"\x3000\x2003 a \x3000");
    s.TrimLeft();
    s.TrimRight();
    EXPECT_STREQ(s.GetData(), L"a");
}

} // namespace
