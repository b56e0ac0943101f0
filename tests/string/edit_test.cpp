// Editing at the ends of what can be named, and case. What texts become otherwise a model tells.
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
        const char *range, *rest;
    } rows[] = {
        {"", 0, 1, "", ""},
        {"abcdef", 2, 3, "cde", "abf"},
        {"abcdef", -1, -2, "ef", "abcd"},
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

        EXPECT_EQ(&s.Delete(row.pos, row.count), &s);
        EXPECT_EQ(narrow(s.GetData()), row.rest);
    }
}

TYPED_TEST(StringEditing, NullTextsChangeNothing) {
    const typename TypeParam::Unit* const null = nullptr;
    auto s = string_of<TypeParam>("abc");
    s.Insert(1, null).Replace(0, 2, null);
    EXPECT_EQ(narrow(s.GetData()), "abc");
    EXPECT_EQ(s.GetAllocSize(), (3 + TypeParam::kCopyExtra) * TypeParam::kUnit);
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

TEST(WideEditing, TrimsWhatTheRuntimeCallsSpace) {
    CXStringW s(L"\x3000\x2003 a \x3000");
    s.TrimLeft();
    s.TrimRight();
    EXPECT_STREQ(s.GetData(), L"a");
}

} // namespace
