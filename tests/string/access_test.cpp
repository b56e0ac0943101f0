// Measuring and reading, by characters and by units.
#include "string_kinds.h"

#include <cstring>

namespace {

// In code page 932: A0 is half-width, 82A0 and 835C are double-byte; 5C, the trail byte of the latter, is
// "\".
constexpr char kMixed[] = "\x82\xA0x\x83\\y";
constexpr char kLeadAtEnd[] = "ab\x83";

TEST(NarrowAccess, FindsCharactersByIndex) {
    const struct {
        Page page;
        const char* text;
        unsigned index;
        wchar_t at;
        unsigned offset;
    } rows[] = {
        {Page::kAny, "", 0, 0, 0},
        {Page::kAny, "abc", 3, 0, 3},
        {Page::kAny, "abc", 4000000000U, 0, 3},
        {Page::kAny, kLeadAtEnd, 2, 0x83, 2},
        {Page::kSingleByte, kMixed, 1, 0xA0, 1},
        {Page::k932, kMixed, 0, 0x82A0, 0},
        {Page::k932, kMixed, 2, 0x835C, 3},
        {Page::k932, kMixed, 4, 0, 6},
    };
    for (const auto& row : rows) {
        if (!applies(row.page)) continue;
        SCOPED_TRACE(std::string(row.text) + " at " + std::to_string(row.index));
        const CXString s(row.text);
        EXPECT_EQ(s.GetAt(row.index), row.at);
        EXPECT_EQ(s.GetData(row.index) - s.GetData(), static_cast<int>(row.offset));
        EXPECT_EQ(s.GetSize(row.index), row.offset);
    }
}

TEST(NarrowAccess, MeasuresPartsInBytes) {
    const struct {
        Page page;
        unsigned start, count, bytes;
    } rows[] = {{Page::kAny, 6, 1, 0}, {Page::kAny, 0, 4000000000U, 6}, {Page::kSingleByte, 5, 9, 1},
                {Page::k932, 1, 2, 3}, {Page::k932, 3, 9, 1},           {Page::k932, 4000000000U, 9, 0}};
    const CXString s(kMixed);
    for (const auto& row : rows)
        if (applies(row.page)) {
            EXPECT_EQ(s.GetSize(row.start, row.count), row.bytes) << row.start << "+" << row.count;
        }
    EXPECT_EQ(CXString("0123456789abcdef0123456789abcdef\x83\\0123456789abcdef").GetLength(),
              applies(Page::k932) ? 49U : 50U);
}

TEST(NarrowAccess, CopiesWholeCharacters) {
    const struct {
        Page page;
        const char* text;
        unsigned count;
        const char* copied;  // by Copy(dst, count), count in characters
        const char* fitting; // by CopyFit(dst, count), count in bytes with the terminator
    } rows[] = {
        {Page::kAny, "abc", 0, "", nullptr},
        {Page::kAny, "abc", 3, "abc", "ab"},
        {Page::kAny, "abc", 4, "abc", "abc"},
        {Page::kAny, "abc", 4000000000U, "abc", "abc"},
        {Page::kAny, "", 5, "", ""},
        {Page::kAny, kLeadAtEnd, 4, kLeadAtEnd, kLeadAtEnd},
        {Page::k932, kMixed, 1, "\x82\xA0", ""},
        {Page::k932, kMixed, 3, "\x82\xA0x\x83\\", "\x82\xA0"},
        {Page::k932, kMixed, 5, kMixed, "\x82\xA0x"},
    };
    for (const auto& row : rows) {
        if (!applies(row.page)) continue;
        SCOPED_TRACE(std::string(row.text) + " " + std::to_string(row.count));
        const CXString s(row.text);
        char copied[16] = "???????????????";
        EXPECT_EQ(s.Copy(copied, row.count), std::strlen(row.copied));
        EXPECT_STREQ(copied, row.copied);
        char fitting[16] = "???????????????";
        EXPECT_EQ(s.CopyFit(fitting, row.count), row.fitting != nullptr ? std::strlen(row.fitting) : 0U);
        // Without any room nothing is written.
        EXPECT_STREQ(fitting, row.fitting != nullptr ? row.fitting : "???????????????");
    }
    char whole[16];
    EXPECT_EQ(CXString(kMixed).Copy(whole), 6U);
    EXPECT_STREQ(whole, kMixed);
}

TEST(WideAccess, CountsUnits) {
    const CXStringW s(L"ab\xD83D\xDE00"); // a surrogate pair is two units
    EXPECT_EQ(s.GetLength(), 4U);
    EXPECT_EQ(s.GetSize(), 4U);
    EXPECT_EQ(s.GetSize(3), 3U);
    EXPECT_EQ(s.GetSize(9), 4U);
    EXPECT_EQ(s.GetSize(1, 2), 2U);
    EXPECT_EQ(s.GetSize(3, 2), 1U);
    EXPECT_EQ(s.GetSize(4000000000U, 4000000000U), 0U);
    EXPECT_EQ(s.GetAt(2), 0xD83D);
    EXPECT_EQ(s.GetAt(4), 0);
    EXPECT_EQ(s.GetAt(4000000000U), 0);
    EXPECT_EQ(s.GetData(9), s.GetData() + 4);
}

TEST(WideAccess, CopiesUnits) {
    const CXStringW s(L"abcd");
    const struct {
        unsigned count;
        const wchar_t *copied, *fitting;
    } rows[] = {{1, L"a", L""}, {3, L"abc", L"ab"}, {5, L"abcd", L"abcd"}, {4000000000U, L"abcd", L"abcd"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.count);
        wchar_t dst[16];
        EXPECT_EQ(s.Copy(dst, row.count), std::wcslen(row.copied));
        EXPECT_STREQ(dst, row.copied);
        EXPECT_EQ(s.CopyFit(dst, row.count), std::wcslen(row.fitting));
        EXPECT_STREQ(dst, row.fitting);
    }
    wchar_t untouched[2] = {L'?', 0};
    EXPECT_EQ(s.CopyFit(untouched, 0), 0U);
    EXPECT_EQ(untouched[0], L'?');
    EXPECT_EQ(s.Copy(nullptr), 0U);
    EXPECT_EQ(s.Copy(nullptr, 2), 0U);
    EXPECT_EQ(s.CopyFit(nullptr, 2), 0U);
    EXPECT_EQ(s.Copy(untouched, 0), 0U);
    EXPECT_STREQ(untouched, L"");
}

} // namespace
