// Numbers as text under "C" rules, against the runtime. Every test runs under a decimal point and under a
// comma.
#include "string/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include <windows.h>

namespace {

using namespace qzr;

class NumberText : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        previous_ = std::setlocale(LC_NUMERIC, nullptr);
        ASSERT_NE(std::setlocale(LC_NUMERIC, GetParam()), nullptr);
    }
    void TearDown() override { std::setlocale(LC_NUMERIC, previous_.c_str()); }

private:
    std::string previous_;
};

INSTANTIATE_TEST_SUITE_P(Locales, NumberText, testing::Values("C", "German"),
                         [](const auto& row) { return std::string(row.param); });

std::string real_text(double value) {
    char text[kRealTextSize];
    const int length = real_to_text14(text, value);
    EXPECT_EQ(static_cast<std::size_t>(length), std::strlen(text));
    return text;
}

std::string runtime_text(double value) {
    char text[64];
    _gcvt(value, 14, text);
    for (char* p = text; *p != 0; ++p)
        if (*p == ',') *p = '.';
    return text;
}

// Where the runtime in use differs from Windows this line tells: there integral values end in a point.
bool integers_end_in_a_point() { return runtime_text(3) == "3."; }

TEST_P(NumberText, RealsHaveTheRuntimesShape) {
    EXPECT_EQ(real_text(0.1 + 0.2), "0.3");
    EXPECT_EQ(real_text(std::numeric_limits<double>::max()), "1.7976931348623e+308");
    EXPECT_EQ(real_text(3), integers_end_in_a_point() ? "3." : "3");
    for (const double value : {0.0, -0.0, 1e13, 1e14, 99999999999999.5, 1e15, 1e-4, 1e-5, 5e-324, 1e100,
                               double(INFINITY), -double(INFINITY), double(NAN), -double(NAN)})
        EXPECT_EQ(real_text(value), runtime_text(value));
}

TEST_P(NumberText, AnyRealIsTheRuntimes) {
    std::mt19937_64 random(20240607);
    for (int i = 0; i < 100000; ++i) {
        const std::uint64_t bits = random();
        const auto any = std::bit_cast<double>(bits);
        const double plain = static_cast<double>(static_cast<std::int64_t>(bits) >> (bits % 60)) / 1000;
        for (const double value : {any, plain}) {
            if (std::isnan(value)) continue;
            ASSERT_EQ(real_text(value), runtime_text(value)) << "bits " << std::hex << bits;
        }
    }
}

// Reals in the middle between two texts of fourteen digits: m / 2^j with a last digit of 5 in the fifteenth
// place, and the same times a power of ten.
TEST_P(NumberText, TiesAreRoundedAsTheRuntimeDoes) {
    std::mt19937_64 random(26);
    int ties = 0;
    double five = 1;
    for (int places = -2; places <= 21; ++places, five *= places > 0 ? 5 : 1) {
        for (int i = 0; i < 3000; ++i) {
            // 15 digits that end in 5 and can be divided by 5^places
            const double step = places > 0 ? five : 5;
            const double odd =
                std::floor((1e14 + 9e14 * (static_cast<double>(random() >> 11) / 0x1p53)) / step / 2) * 2 + 1;
            const double digits = odd * step;
            if (digits < 1e14 || digits >= 1e15) continue;
            const double value = places > 0 ? std::ldexp(odd, -places) : digits * std::pow(10, -places);
            ++ties;
            ASSERT_EQ(real_text(value), runtime_text(value)) << digits << " / 10^" << places;
            ASSERT_EQ(real_text(-value), runtime_text(-value));
        }
    }
    EXPECT_GT(ties, 20000);
    EXPECT_EQ(real_text(10000000000000500.0), "1.0000000000001e+016");
}

TEST_P(NumberText, TextsAreReadAsByThePlatform) {
    const double huge = std::numeric_limits<double>::infinity();
    const struct {
        const char* text;
        double value;
        int length; // of what is consumed
    } rows[] = {
        {"", 0, 0},
        {"x", 0, 0},
        {"1.5", 1.5, 3},
        {"  +1.5e+3x", 1500, 9},
        {"\t\n\v\f\r 2", 2, 7},
        {"1,5", 1, 1},
        {"5.", 5, 2},
        {".", 0, 0},
        {"-", 0, 0},
        {"-.e1", 0, 0},
        {"+-1", 0, 0},
        {"1e", 1, 1},
        {"1e5d", 1e5, 3},
        {"1d3", 1000, 3},
        {"1D-2", 0.01, 4},
        {"1.e5", 1e5, 4},
        {"0x10", 0, 1},
        {"inf", 0, 0},
        {"nan", 0, 0},
        {"1.#INF", 1, 2},
        {"1..5", 1, 2},
        {"1e400", huge, 5},
        {"1e-400", 0, 6},
        {"1e99999999999999999999", huge, 22},
        {"1e-99999999999999999999", 0, 23},
        {"0.000e99999", 0, 11},
        {"4.9e-324", 5e-324, 8},
        {"2e-324", 0, 6},
        {"9007199254740993", 9007199254740992.0, 16},
        {"123456789012345678901234567890", 123456789012345678901234567890.0, 30},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const char* end = nullptr;
        EXPECT_EQ(text_to_real(row.text, &end), row.value);
        EXPECT_EQ(end - row.text, row.length);
        EXPECT_EQ(text_to_real(row.text, nullptr), row.value);
    }
    EXPECT_TRUE(std::signbit(text_to_real("-0", nullptr)));
    EXPECT_TRUE(std::signbit(text_to_real("-1e-400", nullptr)));
}

TEST_P(NumberText, LongMantissasCountByTheirMagnitude) {
    const std::string zeros(400, '0');
    EXPECT_EQ(text_to_real(("1" + zeros + "e-400").c_str(), nullptr), 1);
    EXPECT_EQ(text_to_real(("0." + zeros + "1e401").c_str(), nullptr), 1);
    EXPECT_EQ(text_to_real(("1" + zeros + "d-400").c_str(), nullptr), 1);
    EXPECT_EQ(text_to_real(("1" + zeros).c_str(), nullptr), std::numeric_limits<double>::infinity());
    EXPECT_EQ(text_to_real(("0." + zeros + "1").c_str(), nullptr), 0);
}

TEST_P(NumberText, PrintedRealsReadBackToFourteenDigits) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 100000; ++i) {
        const auto value = std::bit_cast<double>(random());
        if (!std::isfinite(value) || std::fabs(value) < 1e-300 || std::fabs(value) > 1e300) continue;
        const std::string text = real_text(value);
        const double read = text_to_real(text.c_str(), nullptr);
        ASSERT_LE(std::fabs(read / value - 1), 5.1e-14) << text;
        ASSERT_EQ(real_text(read), text);
    }
}

} // namespace
