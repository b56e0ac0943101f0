// Single values in the text form: what each letter reads, and what each type is written as.
#include "forms.h"

#include "support/param_outline.h"

#include <gtest/gtest.h>

#include <clocale>
#include <thread>

namespace {

using namespace forms;

// "i12 -> int 12": a letter with its value, and what is read.
void expect_read(std::initializer_list<const char*> rows) {
    for (const std::string row : rows) {
        const std::size_t arrow = row.find(" -> ");
        const Tree tree = tree_from("[\\]|v=" + row.substr(0, arrow));
        EXPECT_EQ(value_in(*tree, "v"), row.substr(arrow + 4)) << row;
    }
}

std::string written(const CQZVariant& value) {
    const Tree tree = memory_tree();
    tree->SetValue("v", &value);
    return text_of(*tree);
}

TEST(ValueText, KnowsItsLettersAndTellsCaseApart) {
    expect_read({"e -> empty", "e 12 -> empty", "q1 -> none", "I1 -> none", "L1 -> none", "U1 -> none",
                 "S1 -> none", "E -> none", "F1 -> none", "B00 -> none", "X00 -> none", "1 -> none",
                 " -> none", "\xE9 -> none"});
}

// A number is 0 or 1, not only in its lower 32 bits; "0x1" is a decimal 0 and something behind it.
TEST(ValueText, ReadsBooleans) {
    expect_read({"f1 -> bool 1", "f0 -> bool 0", "f01 -> bool 1", "f1abc -> bool 1", "f0x1 -> bool 0",
                 "fYes -> bool 1", "fy -> bool 1", "fYonder -> bool 1", "fNo -> bool 0", "fnever -> bool 0"});
    expect_read({"f2 -> none", "f10 -> none", "f4294967296 -> none", "f4294967297 -> none",
                 "f18446744073709551617 -> none", "f-1 -> none", "f+1 -> none", "f 1 -> none",
                 "ftrue -> none", "f -> none"});
}

TEST(ValueText, ReadsEveryByteAsZero) {
    expect_read({"b00 -> byte 0", "b:L -> byte 0", "bFF -> byte 0", "bff -> byte 0", "b7Pmore -> byte 0",
                 "b9: -> byte 0", "b -> none", "b7 -> none", "bG0 -> none", "b0K -> none", "bQ0 -> none",
                 "bl0 -> none", "b;0 -> none", "b /0 -> none"});
}

// Numbers that do not fit stop at the limit.
TEST(ValueText, ReadsIntegers) {
    expect_read({"i0 -> int 0", "i-12 -> int -12", "i+12 -> int 12", "i 12 -> int 12", "i12abc -> int 12",
                 "i007 -> int 7", "i999999999 -> int 999999999", "i1234567890 -> int 1234567890",
                 "i2147483647 -> int 2147483647", "i2147483648 -> int 2147483647",
                 "i-2147483649 -> int -2147483648"});
    expect_read({"i99999999999999999999 -> int 2147483647", "l-5 -> long -5", "l0x7f -> long 127",
                 "u5 -> uint 5", "u4294967295 -> uint 4294967295", "u4294967296 -> uint 4294967295",
                 "u-1 -> uint 4294967295", "W4294967295 -> ulong 4294967295", "W-2 -> ulong 4294967294",
                 "w65535 -> word 65535", "w0x10 -> word 16"});
    expect_read({"i -> none", "i- -> none", "iabc -> none", "i--1 -> none", "i,1 -> none", "Wabc -> none",
                 "w65536 -> none", "w-1 -> none", "w0x10000 -> none", "w -> none"});
}

TEST(ValueText, AnXAnywhereInTheRestMakesAnIntegerHexadecimal) {
    expect_read({"i0x10 -> int 16", "i0XfF -> int 255", "i-0x10 -> int -16", "i12 x -> int 18",
                 "i12 Xylophone -> int 18", "iabcx -> int 2748", "ix -> none", "iabc -> none",
                 "z0x10,20 -> size 16,20", "z10,0x20 -> size 16,32", "z10 x,20 -> size 16,20",
                 "p10,20x -> point 16,32", "t1,2,3,0x4 -> rect 1,2,3,4", "t10,10,0x10,10 -> rect 16,16,16,10",
                 "i0x80000000 -> int 2147483647", "u0x80000000 -> uint 2147483648"});
}

// What stands between a number and the comma is passed over.
TEST(ValueText, ReadsListsOfNumbers) {
    expect_read({"z-1,-2147483648 -> size -1,-2147483648", "p3,4 -> point 3,4", "p3abc,4def -> point 3,4",
                 "p3 , 4 -> point 3,4", "p1,2,3 -> point 1,2", "Z1.5,-2.25 -> rsize 1.5,-2.25",
                 "P1e3,.5 -> rpoint 1000,0.5", "T1,2.5,-3,4e-2 -> rrect 1,2.5,-3,0.04"});
    expect_read({"p3 -> none", "p3, -> none", "p,4 -> none", "p3;4 -> none", "p3,,4 -> none",
                 "t1,2,3 -> none", "t1,2,3, -> none", "t1,2,,4 -> none", "P1.5 -> none", "Px,1 -> none",
                 "T1,2,3 -> none"});
}

TEST(ValueText, ReadsReals) {
    expect_read({"R2.5 -> double 2.5", "R-1e10 -> double -10000000000", "R 7 -> double 7", "R3. -> double 3",
                 "R1.5abc -> double 1.5", "R -> none", "Rabc -> none", "R. -> none", "r0.25 -> float 0.25",
                 "r0.1 -> float 0.10000000149012", "r1e100 -> float inf", "r -> none"});
}

// Only what follows is trimmed, with the statement.
TEST(ValueText, ReadsTextsAsTheyAre) {
    expect_read({"s -> text ''", "sabc -> text 'abc'", "s  abc -> text '  abc'", "sabc   -> text 'abc'",
                 "sa=b;c#d[e] -> text 'a=b;c#d[e]'", "s\"quoted\" -> text '\"quoted\"'"});
}

// The size comes from the length of the text.
TEST(ValueText, ReadsBlobsPassingOverOtherCharacters) {
    expect_read({"x -> blob 0 null", "x0A -> blob 0A", "x0aff -> blob 0AFF", "xA -> blob A0",
                 "x1G2 -> blob 1200", "x12 34 -> blob 123400", "xzzz -> blob 0000", "x123 -> blob 1230"});
}

TEST(ValueText, WritesEachType) {
    tagQZVARIANT unusual_bool{};
    unusual_bool.vt = QZVT_BOOL;
    unusual_bool.boolVal = 2;
    tagQZVARIANT null_text{};
    null_text.vt = QZVT_TEXT;
    tagQZVARIANT null_wide_text{};
    null_wide_text.vt = QZVT_WTEXT;
    unsigned char bytes[] = {0x00, 0x9A, 0xFF};
    const struct {
        CQZVariant value;
        const char* text;
    } rows[] = {
        {CQZVariant(), "e"},
        {CQZVariant(1, QZVT_BOOL), "f1"},
        {CQZVariant(0, QZVT_BOOL), "f0"},
        {CQZVariant(unusual_bool), "f0"}, // only the word 1 is true
        {CQZVariant(static_cast<unsigned char>(9)), "b09"},
        {CQZVariant(static_cast<unsigned char>(0xAB)), "b:L"}, // digits from ten on are odd
        {CQZVariant(static_cast<unsigned char>(0xCD)), "bMN"},
        {CQZVariant(static_cast<unsigned char>(0xEF)), "bOP"},
        {CQZVariant(static_cast<unsigned short>(65535)), "w65535"},
        {CQZVariant(4294967295UL), "W4294967295"},
        {CQZVariant(-2147483647 - 1), "i-2147483648"},
        {CQZVariant(4294967295U), "u4294967295"},
        {CQZVariant(-7L), "l-7"},
        {CQZVariant(2.5), "R2.5"},
        {CQZVariant(1.0 / 3), "R0.33333333333333"},
        {CQZVariant(0.1F), "r0.10000000149012"}, // as the real number that it is
        {CQZVariant("some text"), "ssome text"},
        {CQZVariant(null_text), "s"},
        {CQZVariant(L"wide"), "swide"},
        {CQZVariant(null_wide_text), "s"},
        {CQZVariant(tagSIZE{-1, 2}), "z-1,2"},
        {CQZVariant(tagRSIZE{0.5, -0.25}), "Z0.5,-0.25"},
        {CQZVariant(tagPOINT{3, -4}), "p3,-4"},
        {CQZVariant(tagRPOINT{1.5, 2.5}), "P1.5,2.5"},
        {CQZVariant(tagRECT{1, -2, 3, -4}), "t1,-2,3,-4"},
        {CQZVariant(tagRRECT{.5, 1.5, 2.5, 3.5}), "T0.5,1.5,2.5,3.5"},
        {CQZVariant(tagQZBLOB{3, bytes}), "x009AFF"},
        {CQZVariant(tagQZBLOB{0, nullptr}), "x"},
        {CQZVariant(tagQZBLOB{2, nullptr}), "x0000"}, // bytes that are not there
    };
    for (const auto& row : rows)
        EXPECT_EQ(written(row.value), std::string("[\\]|v=") + row.text + "|");
}

TEST(ValueText, LeavesOutObjectsAndUnknownTypes) {
    EXPECT_EQ(written(CQZVariant(stream_of({}).Get())), "[\\]|");
    tagQZVARIANT unknown{};
    unknown.vt = QZVT_COUNT;
    EXPECT_EQ(written(CQZVariant(unknown)), "[\\]|");
}

TEST(ValueText, RealsComeBackFromFourteenDigits) {
    for (const double number : {0.0, 3.0, -1.0, 1e15, 1.5e-300, 123456789.25, 1e300}) {
        const std::string text = written(CQZVariant(number));
        const Tree tree = tree_from(text);
        CQZVariant value;
        ASSERT_EQ(tree->GetValue("v", &value), 1) << text;
        EXPECT_EQ(static_cast<double>(value), number) << text;
    }
}

class NumericLocale : public testing::Test {
protected:
    void SetUp() override {
        before_ = std::setlocale(LC_ALL, nullptr);
        if (std::setlocale(LC_ALL, "German") == nullptr) GTEST_SKIP() << "no locale with a decimal comma";
    }
    void TearDown() override { std::setlocale(LC_ALL, before_.c_str()); }
    std::string before_;
};

TEST_F(NumericLocale, DoesNotChangeRealsAndIsNotChanged) {
    const std::string during = std::setlocale(LC_ALL, nullptr);
    EXPECT_EQ(written(CQZVariant(2.5)), "[\\]|v=R2.5|");
    EXPECT_EQ(written(CQZVariant(tagRPOINT{1.5, 2.5})), "[\\]|v=P1.5,2.5|");
    CQZVariant value;
    ASSERT_EQ(tree_from("[\\]|v=P1.5,2.5")->GetValue("v", &value), 1);
    EXPECT_EQ(value.rpointVal.x, 1.5);
    EXPECT_EQ(value.rpointVal.y, 2.5);
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), during);
    EXPECT_STREQ(std::localeconv()->decimal_point, ",");
}

// The conversion must not switch the locale of the process back and forth under other threads.
TEST_F(NumericLocale, IsNeverSeenChangedByOtherThreads) {
    std::thread worker([] {
        for (int i = 0; i < 2000; ++i)
            written(CQZVariant(i + 0.5));
    });
    int points = 0;
    for (int i = 0; i < 20000; ++i) {
        if (std::localeconv()->decimal_point[0] != ',') ++points;
    }
    worker.join();
    EXPECT_EQ(points, 0);
}

} // namespace
