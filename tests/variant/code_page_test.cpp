// Texts that change width: narrow text is in the code page of the process, whichever that is.
#include "qzvariant.h"

#include <gtest/gtest.h>

#include <string>

#include <windows.h>

namespace {

// What the platform makes of the text, an independent opinion.
std::wstring wide_by_platform(const std::string& text) {
    wchar_t wide[64] = {};
    MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, wide, 64);
    return wide;
}

TEST(VariantCodePage, TextsChangeWidthInTheCodePageOfTheProcess) {
    const char* const texts[] = {"",           "plain", "\xCF\xF0\xE8", "caf\xE9 ", "\x93\xFA\x96\x7B",
                                 "\x83\x5C\\", "x\x81"};
    for (const char* text : texts) {
        SCOPED_TRACE(testing::PrintToString(std::string(text)));
        const std::wstring expected = wide_by_platform(text);
        CQZVariant converted(text), cast(text);
        ASSERT_EQ(converted.ChangeType(QZVT_WTEXT), 1);
        EXPECT_EQ(converted.pwszVal, expected);
        EXPECT_EQ(static_cast<wchar_t*>(cast), expected);
    }
    // One letter that the code page knows, there and back.
    const struct {
        unsigned code_page;
        const wchar_t* wide;
        const char* narrow;
    } letters[] = {
        {1252, L"caf\x00E9", "caf\xE9"}, {1251, L"\x041F\x0440", "\xCF\xF0"}, {932, L"\x65E5", "\x93\xFA"}};
    for (const auto& row : letters) {
        if (row.code_page != GetACP()) continue;
        CQZVariant text(row.wide);
        ASSERT_EQ(text.ChangeType(QZVT_TEXT), 1);
        EXPECT_STREQ(text.pszVal, row.narrow);
        ASSERT_EQ(text.ChangeType(QZVT_WTEXT), 1);
        EXPECT_STREQ(text.pwszVal, row.wide);
    }
}

} // namespace
