// Searching for nothing, and without case. What is found otherwise a model tells.
#include "string_kinds.h"

namespace {

template <class Kind>
class StringSearch : public testing::Test {};
TYPED_TEST_SUITE(StringSearch, BothKinds, KindNames);

TYPED_TEST(StringSearch, NullAndNothingAreFoundNowhere) {
    const typename TypeParam::Unit nothing[] = {0};
    const typename TypeParam::Unit* const null = nullptr;
    const auto s = string_of<TypeParam>("abc");
    EXPECT_EQ(s.Find(null, 0), -1);
    for (const auto* const set : {nothing, null}) {
        EXPECT_EQ(s.FindOnOf(set, 0), -1);
        EXPECT_EQ(s.FindRevOnOf(set), -1);
    }
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
