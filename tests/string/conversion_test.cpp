// Narrow and wide text into each other.
#include "string_kinds.h"

#include "qzsupp.h"

namespace {

constexpr unsigned kAnyPage = 0;

TEST(StringConversion, FollowsTheCodePage) {
    const struct {
        unsigned page;
        const char* narrow;
        const wchar_t* wide;
    } rows[] = {
        {kAnyPage, "", L""},
        {kAnyPage, "abc~\\\x7F\x01", L"abc~\\\x7F\x01"},
        {1252, "\xC6\x80", L"\xC6\x20AC"},
        {1251, "\xC6\xE9", L"\x0416\x0439"},
        {932, "\xC6\x83\\x", L"\xFF86\x30BDx"},
    };
    EXPECT_STREQ(CXString(L"a\x0E01z").GetData(), "a?z") << "what the page lacks";
    for (const auto& row : rows) {
        if (row.page != kAnyPage && row.page != GetACP()) continue;
        SCOPED_TRACE(row.narrow);
        const CXStringW wide(row.narrow);
        EXPECT_STREQ(wide.GetData(), row.wide);
        const CXString narrow(row.wide);
        EXPECT_STREQ(narrow.GetData(), row.narrow);
        CXString assigned("old");
        assigned = row.wide;
        EXPECT_STREQ(assigned.GetData(), row.narrow);
        CXStringW out(L"old");
        hostMultiByteToUnicode(row.narrow, out);
        EXPECT_STREQ(out.GetData(), row.wide);
        if (*row.narrow == 0) continue;
        EXPECT_EQ(narrow.GetAllocSize(), int(std::strlen(row.narrow)) + 1);
        EXPECT_EQ(wide.GetAllocSize(), (int(std::wcslen(row.wide)) + 2) * 2);
    }
}

// The platform's own conversion is the witness, for texts on both sides of every internal limit.
TEST(StringConversion, TextsOfAnyLengthSurvive) {
    for (const std::size_t length : {1, 15, 16, 17, 255, 256, 257, 511, 512, 513, 1024, 70000})
        for (const std::size_t special : {length, std::size_t{0}, length / 2, length - 1}) {
            SCOPED_TRACE(std::to_string(length) + ", not ASCII at " + std::to_string(special));
            std::string narrow;
            for (std::size_t i = 0; i < length; ++i)
                narrow += i == special ? '\xC6' : static_cast<char>('0' + i % 10);
            std::wstring wide(length, L'?');
            ASSERT_EQ(MultiByteToWideChar(CP_ACP, 0, narrow.data(), int(length), wide.data(), int(length)),
                      int(length));
            EXPECT_EQ(std::wstring(CXStringW(narrow.c_str()).GetData()), wide);
            EXPECT_EQ(std::string(CXString(wide.c_str()).GetData()), narrow);
        }
}

TEST(StringConversion, NullIsEmpty) {
    const char* const null = nullptr;
    const wchar_t* const wide_null = nullptr;
    CXStringW wide(L"old");
    hostMultiByteToUnicode(null, wide);
    EXPECT_EQ(wide.GetAllocSize(), 0);
    CXString narrow("old");
    narrow = wide_null;
    EXPECT_EQ(narrow.GetAllocSize(), 0);
}

} // namespace
