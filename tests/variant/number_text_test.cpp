// Numbers and texts: what the library prints and reads by itself must be what the platform's runtime prints
// and reads, whatever the value and the locale.
#include "qzvariant.h"

#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::string by_runtime(double value) {
    char text[64];
    _snprintf(text, sizeof text, "%lg", value);
    return text;
}

std::wstring by_runtime_wide(double value) {
    wchar_t text[64];
    _snwprintf(text, 64, L"%lg", value);
    return text;
}

std::vector<double> reals_of_all_kinds() {
    std::vector<double> values = {
        0.0,     -0.0,           1,          -1,        0.1,         0.5,           0.25,      123456,
        1234567, 999999,         999999.4,   999999.5,  999999.6,    1e6,           1e-4,      0.00009999995,
        0.0001,  0.000099999949, 0.09999999, 99999.95,  99999.949,   1.000005,      1.0000051, 1.0000049,
        2.5,     1.0000005,      100000.5,   12345.65,  0.001,       0.00123456789, 5e-324,    1e300,
        1.0 / 3, 2.0 / 3,        HUGE_VAL,   -HUGE_VAL, std::nan("")};
    std::mt19937_64 random(20240517); // the same values in every run
    for (int i = 0; i < 4000; ++i) {
        const double fraction = static_cast<double>(random()) / 18446744073709551616.0;
        values.push_back(fraction);
        values.push_back(-fraction * 1e6);
        values.push_back(std::pow(10.0, static_cast<double>(random() % 14) - 6) * fraction);
        values.push_back(static_cast<double>(random() % 20000000) / 100); // amounts of money
        values.push_back(static_cast<double>(random() % 20000000) / 128); // ends in a half at times
        values.push_back(std::bit_cast<double>(random()));
    }
    return values;
}

TEST(VariantNumbers, RealsPrintAsTheRuntimePrintsThem) {
    for (const double value : reals_of_all_kinds()) {
        SCOPED_TRACE(testing::Message() << "bits " << std::hex << std::bit_cast<std::uint64_t>(value));
        CQZVariant narrow(value), wide(value);
        ASSERT_EQ(narrow.ChangeType(QZVT_TEXT), 1);
        ASSERT_EQ(narrow.pszVal, by_runtime(value));
        ASSERT_EQ(wide.ChangeType(QZVT_WTEXT), 1);
        ASSERT_EQ(wide.pwszVal, by_runtime_wide(value));
        const auto single = static_cast<float>(value);
        CQZVariant from_float(single);
        ASSERT_EQ(from_float.ChangeType(QZVT_TEXT), 1);
        ASSERT_EQ(from_float.pszVal, by_runtime(static_cast<double>(single)));
    }
}

TEST(VariantNumbers, IntegersPrintAsTheRuntimePrintsThem) {
    std::vector<unsigned> values = {0, 1, 9, 10, 99, 100, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    for (unsigned power = 1; power <= 1000000000; power *= 10) {
        values.insert(values.end(), {power - 1, power, power + 1});
        if (power == 1000000000) break;
    }
    for (const unsigned value : values) {
        SCOPED_TRACE(value);
        char text[32];
        CQZVariant as_unsigned(value), as_int(static_cast<int>(value));
        ASSERT_EQ(as_unsigned.ChangeType(QZVT_TEXT), 1);
        _snprintf(text, sizeof text, "%u", value);
        EXPECT_STREQ(as_unsigned.pszVal, text);
        ASSERT_EQ(as_int.ChangeType(QZVT_TEXT), 1);
        _snprintf(text, sizeof text, "%d", static_cast<int>(value));
        EXPECT_STREQ(as_int.pszVal, text);
    }
}

std::vector<std::string> texts_of_all_kinds() {
    std::istringstream written(
        "0|-0|0.|-0.0|+1.5|1.|1e5|1e|1e+|1d5|1p5|0x10|0x|0x1.8p1|1.5.5|1..5|.5|-.5|.|--1|+-1|"
        "1 2|1_000|infinity|nan|1e400|1e-400|\2405|999999999|1000000000|0000000001|"
        "00000000001|4294967295|123456789012345|1234567890123456|0.1234567890123456|"
        "0.12345678901234|16777215|16777216|16777217|33554433|1.00000005960464|0.0000000001|"
        "0.00000000001|1,5|1.5,2| \t\n\v\f\r-12|- 12|-|abc|0012|12.9| 7.|1.5x|2147483647|-2147483648|"
        "123456789012345|0.000000000000001|000000000000123");
    std::vector<std::string> texts = {""};
    for (std::string text; std::getline(written, text, '|');)
        texts.push_back(text);
    std::mt19937 random(5);
    for (int i = 0; i < 3000; ++i) {
        std::string text;
        const unsigned length = 1 + random() % 18;
        for (unsigned k = 0; k < length; ++k)
            text += "0123456789012345678901234567890123456789.-+e x"[random() % 46];
        texts.push_back(text);
    }
    return texts;
}

template <class T>
void check_scan(const std::string& text, unsigned short vt, const char* format) {
    T expected{};
    const bool is_number = __ms_sscanf(text.c_str(), format, &expected) == 1;
    CQZVariant narrow(text.c_str());
    ASSERT_EQ(narrow.ChangeType(vt), is_number ? 1 : 0);
    if (is_number) {
        ASSERT_EQ(std::memcmp(&narrow.rrectVal, &expected, sizeof expected), 0);
    }
    const std::wstring wide_text(text.begin(), text.end());
    const std::wstring wide_format(format, format + std::strlen(format));
    const bool is_wide_number = __ms_swscanf(wide_text.c_str(), wide_format.c_str(), &expected) == 1;
    CQZVariant wide(wide_text.c_str());
    ASSERT_EQ(wide.ChangeType(vt), is_wide_number ? 1 : 0);
    if (is_wide_number) {
        ASSERT_EQ(std::memcmp(&wide.rrectVal, &expected, sizeof expected), 0);
    }
}

TEST(VariantNumbers, TextsReadAsTheRuntimeReadsThem) {
    for (const std::string& text : texts_of_all_kinds()) {
        SCOPED_TRACE(text);
        ASSERT_NO_FATAL_FAILURE(check_scan<int>(text, QZVT_INT, "%d"));
        ASSERT_NO_FATAL_FAILURE(check_scan<double>(text, QZVT_DOUBLE, "%lf"));
        ASSERT_NO_FATAL_FAILURE(check_scan<float>(text, QZVT_FLOAT, "%f"));
    }
}

TEST(VariantNumbers, TheDecimalPointFollowsTheLocaleOfTheProcess) {
    ASSERT_NE(std::setlocale(LC_NUMERIC, "German"), nullptr);
    CQZVariant real(2.5), single(-0.25f), text("1,5"), wide(L"1,5 m");
    EXPECT_EQ(real.ChangeType(QZVT_TEXT), 1);
    EXPECT_STREQ(real.pszVal, "2,5");
    EXPECT_EQ(single.ChangeType(QZVT_WTEXT), 1);
    EXPECT_STREQ(single.pwszVal, L"-0,25");
    EXPECT_EQ(text.ChangeType(QZVT_DOUBLE), 1);
    EXPECT_EQ(text.doubleVal, 1.5);
    EXPECT_EQ(wide.ChangeType(QZVT_FLOAT), 1);
    EXPECT_EQ(wide.floatVal, 1.5f);
    std::setlocale(LC_NUMERIC, "C");
}

} // namespace
