// Measuring and reading: what a model does not tell.
#include "string_kinds.h"

#include <atomic>
#include <cstring>
#include <thread>

#include <mbctype.h>

namespace {

// In code page 932: A0 is half-width, 82A0 and 835C are double-byte; 5C, the trail byte of the latter, is
// "\".
constexpr char kMixed[] = "\x82\xA0x\x83\\y";

// Whatever page another thread switches to while one is first met.
TEST(NarrowAccess, LeadBytesBelongToTheirCodePage) {
    const int before = _getmbcp();
    constexpr int kPages[] = {932, 936, 949, 950, 1251};
    std::atomic<bool> met{false};
    std::thread other([&] {
        for (int i = 0; !met; ++i)
            _setmbcp(kPages[i % 5]);
    });
    for (int i = 0; i < 20000; ++i)
        ASSERT_LE(CXString(kMixed).GetLength(), 6U);
    met = true;
    other.join();
    for (const int page : kPages) {
        ASSERT_EQ(_setmbcp(page), 0);
        for (int c = 0x80; c < 256; ++c)
            ASSERT_EQ(CXString(std::string{static_cast<char>(c), 'A'}.c_str()).GetLength(),
                      IsDBCSLeadByteEx(static_cast<UINT>(page), static_cast<BYTE>(c)) != 0 ? 1U : 2U)
                << page << " " << c;
    }
    _setmbcp(before);
}

TEST(NarrowAccess, CountsCharactersOfLongTexts) {
    EXPECT_EQ(CXString("0123456789abcdef0123456789abcdef\x83\\0123456789abcdef").GetLength(),
              applies(Page::k932) ? 49U : 50U);
    char whole[16];
    EXPECT_EQ(CXString(kMixed).Copy(whole), 6U);
    EXPECT_STREQ(whole, kMixed);
}

TEST(WideAccess, CopiesToNowhereNothing) {
    const CXStringW s(L"abcd");
    EXPECT_EQ(s.Copy(nullptr), 0U);
    EXPECT_EQ(s.Copy(nullptr, 2), 0U);
    EXPECT_EQ(s.CopyFit(nullptr, 2), 0U);
    wchar_t whole[16];
    EXPECT_EQ(s.Copy(whole), 4U);
    EXPECT_STREQ(whole, L"abcd");
}

} // namespace
