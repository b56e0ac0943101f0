// Comparing, with and without case, in full and in part.
#include "string_kinds.h"

#include <climits>

#include <mbstring.h>

namespace {

template <class Kind>
class StringComparison : public testing::Test {};
TYPED_TEST_SUITE(StringComparison, BothKinds, KindNames);

int sign(int order) { return (order > 0) - (order < 0); }

TYPED_TEST(StringComparison, OrdersTexts) {
    const struct {
        const char *a, *b;
        int order, order_without_case;
        int n, order_of_n, order_of_n_without_case;
    } rows[] = {
        {"", "", 0, 0, 5, 0, 0},
        {"", "a", -1, -1, 0, 0, 0},
        {"a", "", 1, 1, 1, 1, 1},
        {"abc", "abd", -1, -1, 3, -1, -1},
        {"abc", "ab", 1, 1, 2, 0, 0},
        {"abc", "ab", 1, 1, -1, 1, 1},
        {"abc", "ABC", 1, 0, 2, 1, 0},
        {"ABC", "abd", -1, -1, 3, -1, -1},
        {"Zebra", "apple", -1, 1, 1, -1, 1},
        {"_", "A", 1, -1, 1, 1, -1}, // without case letters are lower-case ones
        {"the quick brown fox jumps over the lazy dog", "THE QUICK BROWN FOX JUMPS OVER THE LAZY DOG", 1, 0,
         40, 1, 0},
        {"the quick brown fox jumps over the lazy dog", "the quick brown fox jumps over the lazy cat", 1, 1,
         40, 0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.a) + " | " + row.b + " | " + std::to_string(row.n));
        const auto a = string_of<TypeParam>(row.a), b = string_of<TypeParam>(row.b);
        EXPECT_EQ(sign(a.Compare(b.GetData())), row.order);
        EXPECT_EQ(sign(b.Compare(a.GetData())), -row.order);
        EXPECT_EQ(sign(a.CompareI(b.GetData())), row.order_without_case);
        EXPECT_EQ(sign(b.CompareI(a.GetData())), -row.order_without_case);
        EXPECT_EQ(sign(a.CompareN(b.GetData(), row.n)), row.order_of_n);
        EXPECT_EQ(sign(a.CompareIN(b.GetData(), row.n)), row.order_of_n_without_case);
        EXPECT_EQ(a == b, row.order == 0);
        EXPECT_EQ(a != b.GetData(), row.order != 0);
    }
}

TEST(NarrowComparison, OrdersCharactersOfTheCodePage) {
    const struct {
        Page page;
        const char *a, *b;
        int order;
        int n, order_of_n; // n in characters
    } rows[] = {
        {Page::kAny, "\xC0", "a", 1, 1, 1},
        {Page::kAny, "ab\x83", "ab\x83", 0, 3, 0},
        {Page::k932, "\x83\\x", "\x83\\y", -1, 1, 0},
        {Page::k932, "\x83\\", "\x83\x41", 1, 1, 1},
        {Page::k932, "ab\x83", "ab\x83\\", -1, 2, 0},
        {Page::k932, "\x83\\", "\xB1", 1, 1, 1}, // two bytes come after every single one
        {Page::kSingleByte, "\x83\\x", "\x83\\y", -1, 2, 0},
        {Page::kSingleByte, "\x83\\", "\xB1", -1, 1, -1},
    };
    for (const auto& row : rows) {
        if (!applies(row.page)) continue;
        SCOPED_TRACE(std::string(row.a) + " | " + row.b);
        const CXString a(row.a), b(row.b);
        EXPECT_EQ(sign(a.Compare(row.b)), row.order);
        EXPECT_EQ(sign(b.Compare(row.a)), -row.order);
        EXPECT_EQ(sign(a.CompareN(row.b, row.n)), row.order_of_n);
    }
}

// Beyond ASCII the order without case is the runtime's affair; it is the witness here, for well-formed text.
TEST(NarrowComparison, WithoutCaseIsWhatTheRuntimeSays) {
    const auto bytes = [](const char* s) { return reinterpret_cast<const unsigned char*>(s); };
    const char* const texts[] = {"",          "a",         "A",         "abc\xC0",  "ABC\xE0",   "\xC0zz",
                                 "\x83\\x",   "a\x83\\X",  "A\x83\\x",  "\xB1",     "a\x82\x81", "A\x82\x60z",
                                 "a\x82\x61", "a\x83\x41", "A\x83\\Cd", "a\x83\\cD"};
    for (const char* a : texts)
        for (const char* b : texts) {
            SCOPED_TRACE(std::string(a) + " | " + b);
            EXPECT_EQ(sign(CXString(a).CompareI(b)), sign(_mbsicmp(bytes(a), bytes(b))));
            EXPECT_EQ(sign(CXString(a).Compare(b)), sign(_mbscmp(bytes(a), bytes(b))));
            for (const int n : {1, 2, 3}) {
                EXPECT_EQ(sign(CXString(a).CompareIN(b, n)), sign(_mbsnicmp(bytes(a), bytes(b), n))) << n;
                EXPECT_EQ(sign(CXString(a).CompareN(b, n)), sign(_mbsncmp(bytes(a), bytes(b), n))) << n;
            }
        }
}

TEST(WideComparison, OrdersByUnsignedUnitsAndTakesNull) {
    EXPECT_EQ(CXStringW(L"\xFFFF").Compare(L"a"), 1);
    EXPECT_EQ(CXStringW(L"a").Compare(L"\x8000"), -1);
    EXPECT_EQ(CXStringW(L"a\x0416").CompareI(L"A\x0416"), 0);
    EXPECT_EQ(CXStringW(L"a\x0416").CompareN(L"a\x0417", 1), 0);
    for (const wchar_t* text : {L"", L"a"}) {
        const CXStringW s(text);
        EXPECT_EQ(s.Compare(nullptr), 1);
        EXPECT_EQ(s.CompareI(nullptr), 1);
        EXPECT_EQ(s.CompareN(nullptr, 0), 1);
        EXPECT_EQ(s.CompareIN(nullptr, 3), 1);
    }
}

} // namespace
