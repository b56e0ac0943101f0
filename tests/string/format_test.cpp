// Formatting: results, the room that is reserved, arguments that lie in the string itself. Runs under a
// decimal comma too, so reals have no fraction here.
#include "string_kinds.h"

#include "qzexception.h"
#include "support/fenced_page.h"

#include <climits>
#include <cmath>

namespace {

TEST(NarrowFormat, PrintsAsThePlatformDoes) {
    CXString s("old");
    s.Format("%d|%5u|%-4x|%c|%s", -7, 42U, 255, 'z', "text");
    EXPECT_STREQ(s.GetData(), "-7|   42|ff  |z|text");
    s.Format("%lg %g", 1e10, 1e-5); // three exponent digits
    EXPECT_STREQ(s.GetData(), "1e+010 1e-005");
    s.Format("%I64d %I64x", 1LL << 40, 1LL << 36);
    EXPECT_STREQ(s.GetData(), "1099511627776 1000000000");
    s.Format("%s", static_cast<const char*>(nullptr));
    EXPECT_STREQ(s.GetData(), "(null)");
    s.Format("100%%");
    EXPECT_STREQ(s.GetData(), "100%");
    s.Format("");
    EXPECT_STREQ(s.GetData(), "");
}

TEST(WideFormat, TakesPlainStringsAsWide) {
    CXStringW s(L"old");
    s.Format(L"%d|%s|%S|%c", -7, L"wide", "narrow", L'\x0416');
    EXPECT_STREQ(s.GetData(), L"-7|wide|narrow|\x0416");
    s.Format(L"%lg", 1e10);
    EXPECT_STREQ(s.GetData(), L"1e+010");
    s.Format(L"%s", static_cast<const wchar_t*>(nullptr));
    EXPECT_STREQ(s.GetData(), L"(null)");
}

// One slot of arguments each: the estimate reads what the format names.
TEST(Format, ReservesWhatTheFormatLetsExpect) {
    const struct {
        const char* format;
        int units; // before the terminator
        const char* result;
    } rows[] = {
        {"", 0, ""},           {"abc", 3, "abc"},   {"a%%b", 3, "a%b"},
        {"%d", 32, "7"},       {"x%uy", 34, "x7y"}, {"%40d", 40, "                                       7"},
        {"%4.3d", 32, " 007"}, {"%#x", 34, "0x7"},  {"%i%o", 64, nullptr},
        {"%p", 32, nullptr},   {"%c", 1, "\x07"},   {"%5c", 5, "    \x07"},
        {"%ld", 32, "7"},      {"%I64d", 32, "7"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.format);
        CXString s;
        s.Format(row.format, 7, 7);
        EXPECT_EQ(s.GetAllocSize(), row.units + 1);
        CXStringW w;
        w.Format(text<WideKind>(row.format).c_str(), 7, 7);
        EXPECT_EQ(w.GetAllocSize(), (row.units + 1) * 2);
        if (row.result == nullptr) continue;
        EXPECT_STREQ(s.GetData(), row.result);
        EXPECT_EQ(narrow(w.GetData()), row.result);
    }
}

TEST(Format, ReservesForTextsAndReals) {
    CXString s;
    const auto room = [&s](auto... arguments) {
        CXString fresh;
        fresh.Format(arguments...);
        s = fresh;
        return fresh.GetAllocSize() - 1;
    };
    EXPECT_EQ(room("%s", "abcde"), 5);
    EXPECT_EQ(room("%s", ""), 1);
    EXPECT_EQ(room("%8s", "abc"), 8);
    EXPECT_EQ(room("%.2s", "abc"), 2);
    EXPECT_EQ(room("%8.2s", "abc"), 8);
    EXPECT_EQ(room("%*s", 9, "abc"), 9);
    EXPECT_EQ(room("%*s", -9, "abc"), 9);
    EXPECT_STREQ(s.GetData(), "abc      ");
    EXPECT_EQ(room("%.*s", 1, "abc"), 1);
    EXPECT_EQ(room("%.*s", -1, "abc"), 3);
    EXPECT_EQ(room("%ls", L"abcd"), 4);
    EXPECT_EQ(room("%S", L"abcd"), 4);
    EXPECT_EQ(room("%s-%s", "ab", "cd"), 5);
    EXPECT_EQ(room("%10.38d", 7), 48);
    EXPECT_EQ(room("%f", 1.0), 128);
    EXPECT_EQ(room("%100.50e", 1.0), 150);
    int before = -1;
    EXPECT_EQ(room("ab%n%s", &before, "cde"), 5);
    EXPECT_STREQ(s.GetData(), "abcde");
    EXPECT_EQ(before, 2);
    EXPECT_EQ(room("%g%s", 2.0, "abc"), 131);
    EXPECT_STREQ(s.GetData(), "2abc");
    CXStringW w;
    w.Format(L"%s%hs%S", L"ab", "cde", "f");
    EXPECT_EQ(w.GetAllocSize(), 7 * 2);
    EXPECT_STREQ(w.GetData(), L"abcdef");
}

// Texts end where the memory does: at their precision, or with a terminator in the width of the argument.
TEST(Format, ReadsTextsInTheirOwnWidth) {
    const FencedPage narrow_page, wide_page;
    const struct {
        const char* format;
        bool is_narrow[2]; // the argument, in the narrow and in the wide class
    } rows[] = {{"%s", {true, false}},   {"%S", {false, true}},   {"%hs", {true, true}},
                {"%hS", {true, true}},   {"%ls", {false, false}}, {"%lS", {false, false}},
                {"%ws", {false, false}}, {"%wS", {false, false}}, {"%Ls", {true, false}},
                {"%lls", {true, false}}, {"%llS", {false, true}}, {"%I64s", {true, false}},
                {"%hls", {false, false}}};
    for (const auto& row : rows)
        for (const bool bounded : {false, true}) {
            std::string format = row.format;
            if (bounded) format.insert(1, ".3");
            SCOPED_TRACE(format);
            const char* const a = narrow_page.at_end("abc", bounded ? 3 : 4);
            const wchar_t* const w = wide_page.at_end(L"abc", bounded ? 3 : 4);
            CXString s;
            CXStringW wide;
            s.Format(format.c_str(), row.is_narrow[0] ? static_cast<const void*>(a) : w);
            wide.Format(text<WideKind>(format).c_str(), row.is_narrow[1] ? static_cast<const void*>(a) : w);
            EXPECT_STREQ(s.GetData(), "abc");
            EXPECT_STREQ(wide.GetData(), L"abc");
        }
    CXString s;
    s.Format("%Is %d", 5); // no prefix: the runtime takes no argument for it
    EXPECT_STREQ(s.GetData(), "Is 5");
}

// A real of 309 digits and a fraction of seven characters outgrows what is expected; whatever comes behind it
// is compared with what the runtime prints where there is room.
TEST(Format, MakesRoomForMoreThanExpected) {
    const struct {
        const char* format; // of a real and a character
        double real;
    } rows[] = {{"%f", 1e308},        {"%f%250c", 1e308},  {"%f%-250c", -1e308}, {"%f%c%180c", 1e308},
                {"%f%300d", 1e308},   {"%f%300x", 1e15},   {"%.200e%90c", 1e9},  {"%.400f", 1e-9},
                {"%.99f%-99c", 1e15}, {"%200f%#o", 1e200}, {"%y %d", 5},         {"%f%5000c", 1e308},
                {"%f%.20u", 1e90},    {"%500g%C", 1}};
    for (const auto& row : rows)
        for (const unsigned before : {0u, 480u, 6000u}) {
            SCOPED_TRACE(std::string(row.format) + " over " + std::to_string(before));
            std::string expected(8192, '\0');
            expected.resize(static_cast<std::size_t>(
                _snprintf(expected.data(), expected.size(), row.format, row.real, int{'x'}, int{'y'})));
            CXString s(std::string(before, 'O').c_str());
            s.Format(row.format, row.real, int{'x'}, int{'y'});
            EXPECT_EQ(std::string(s.GetData()), expected);
            CXStringW w(std::wstring(before, L'O').c_str());
            w.Format(text<WideKind>(row.format).c_str(), row.real, int{'x'}, int{'y'});
            EXPECT_EQ(narrow(w.GetData()), expected);
        }
    CXString s;
    s.Format("%f", 1e308);
    EXPECT_EQ(s.GetAllocSize(), 317);
    const std::string filler(70000, 'x');
    s.Format("[%s]", filler.c_str());
    EXPECT_EQ(s.GetAllocSize(), 70003);
    EXPECT_EQ(std::string(s.GetData()), "[" + filler + "]");
}

TEST(Format, KeepsABlockThatIsLargeEnoughAndEndsSharing) {
    CXString s;
    s.GetBuffer(100);
    s.ReleaseBuffer();
    const char* const block = s.GetData();
    s.Format("%d", 5);
    EXPECT_EQ(s.GetData(), block);
    EXPECT_EQ(s.GetAllocSize(), 101);
    const CXString shared(s);
    s.Format("%d", 6);
    EXPECT_STREQ(shared.GetData(), "5");
    EXPECT_STREQ(s.GetData(), "6");
    EXPECT_EQ(s.GetAllocSize(), 33);
}

TEST(Format, ArgumentsMayLieInTheStringItself) {
    for (const int length : {3, 3000}) {
        SCOPED_TRACE(length);
        const std::string old(static_cast<std::size_t>(length), 'x');
        CXString s(old.c_str());
        s.Format("%s-%s", s.GetData(), s.GetData());
        EXPECT_EQ(std::string(s.GetData()), old + "-" + old);
        s.GetBuffer(50000);
        s.ReleaseBuffer();
        s.Format("<%s>", s.GetData());
        EXPECT_EQ(std::string(s.GetData()), "<" + old + "-" + old + ">");
        EXPECT_EQ(s.GetAllocSize(), 50001);
        CXStringW w(L"%s and %s");
        w.Format(w.GetData(), L"a", w.GetData());
        EXPECT_STREQ(w.GetData(), L"a and %s and %s");
    }
}

TEST(Format, WidthsBeyondAnyBlockAreExhaustion) {
    CXString s("abc");
    EXPECT_THROW(s.Format("%*d", INT_MAX - 3, 1), CXMemException);
    EXPECT_THROW(s.Format("%*d", INT_MIN, 1), CXMemException);
    EXPECT_THROW(s.Format("%2147483647d", 1), CXMemException);
    EXPECT_THROW(s.Format("%99999999999999999999d", 1), CXMemException);
    EXPECT_THROW(s.Format("%.2147483640f", 1.0), CXMemException);
    EXPECT_THROW(s.Format("%1500000000d%1500000000d", 1, 1), CXMemException);
    EXPECT_STREQ(s.GetData(), "abc");
    CXStringW w(L"abc");
    EXPECT_THROW(w.Format(L"%1500000000d", 1), CXMemException);
    EXPECT_STREQ(w.GetData(), L"abc");
}

} // namespace
