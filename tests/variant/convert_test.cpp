// Conversion between all types.
#include "qzstring.h"
#include "qzvariant.h"

#include "support/counting_object.h"
#include "support/live_blocks.h"
#include "support/variants.h"

#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <cstring>
#include <limits>
#include <string>

#include <windows.h>

namespace {

constexpr const char* kNone = nullptr; // no such conversion

// For each target what the samples of variants.h become, in the order of their codes: nothing, true, 200,
// 60000, 4000000000, -70000, 3000000000, -5, -2.5, 3.75f, "7", (3,-4), (2.5,-2.5), (-7,8), (1.4,-1.6),
// (0,0,11,10), (0,0,9.6,9.4), 01 02 FF, object, L"42".
const char* const kMatrix[QZVT_COUNT][QZVT_COUNT] = {
    // empty
    {"", "", "", "", "", "", "", "", "", "", "", "", "", "", "", "", "", "", "", ""},
    // boolean
    {"0", "1", "1", "1", "1", "1", "1", "1", "1", "1"},
    // unsigned char: the lowest byte
    {"0", "1", "200", "96", "0", "144", "0", "251"},
    // unsigned short: the low 16 bits
    {"0", "1", "200", "60000", "10240", "61072", "24064", "65531"},
    // unsigned long; no address of a text lies where the bits of -2.5 point
    {"0", "1", "200", "60000", "4000000000", "4294897296", "3000000000", "4294967291"},
    // int
    {"0", "1",   "200", "60000", "-294967296", "-70000", "-1294967296", "-5",  "-2",  "3",
     "7", kNone, kNone, kNone,   kNone,        kNone,    kNone,         kNone, kNone, "42"},
    // unsigned int
    {"0", "1",   "200", "60000", "4000000000", "4294897296", "3000000000", "4294967291", "4294967294", "3",
     "7", kNone, kNone, kNone,   kNone,        kNone,        kNone,        kNone,        kNone,        "42"},
    // long
    {"0", "1",   "200", "60000", "-294967296", "-70000", "-1294967296", "-5",  "-2",  "3",
     "7", kNone, kNone, kNone,   kNone,        kNone,    kNone,         kNone, kNone, "42"},
    // double
    {"0", "1",   "200", "60000", "4000000000", "-70000", "3000000000", "-5",  "-2.5", "3.75",
     "7", kNone, kNone, kNone,   kNone,        kNone,    kNone,        kNone, kNone,  "42"},
    // float
    {"0", "1",   "200", "60000", "4000000000", "-70000", "3000000000", "-5",  "-2.5", "3.75",
     "7", kNone, kNone, kNone,   kNone,        kNone,    kNone,        kNone, kNone,  "42"},
    {}, // narrow text
    // size
    {kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, "3,-4", "3,-2"},
    // real size
    {kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, "3,-4", "2.5,-2.5"},
    // point
    {kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, "-7,8",
     "1,-2"},
    // real point
    {kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, "-7,8",
     "1.4,-1.6"},
    // rectangle
    {kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
     "0,0,11,10", "0,0,11,10"},
    // real rectangle
    {kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
     "0,0,10,9", "0,0,9.6,9.4"},
    // blob
    {kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
     kNone, kNone, "0102FF"},
    // object
    {kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
     kNone, kNone, kNone, "object"},
    {}, // wide text
};

// The same for both kinds of text, without their quotes.
const char* const kTexts[QZVT_COUNT] = {"",    "Yes",  "200",  "60000", "4000000000", "-70000", "3000000000",
                                        "-5",  "-2.5", "3.75", "7",     kNone,        kNone,    kNone,
                                        kNone, kNone,  kNone,  kNone,   kNone,        "42"};

class VariantConvert : public testing::Test {
protected:
    // The values here are written with a point.
    void SetUp() override { ASSERT_NE(std::setlocale(LC_NUMERIC, "C"), nullptr); }
};

void check_conversion(const CQZVariant& source, unsigned short target, const char* expected) {
    SCOPED_TRACE(testing::Message() << "code " << source.vt << " to " << target);
    CQZVariant apart("old");
    CQZVariant in_place(source);
    const int converted = expected != kNone ? 1 : 0;
    EXPECT_EQ(QZVariantChangeType(&apart, &source, target), converted);
    EXPECT_EQ(QZVariantChangeType(&in_place, &in_place, target), converted);
    if (converted) {
        EXPECT_EQ(apart.vt, target);
        EXPECT_EQ(show(apart), expected);
        EXPECT_EQ(in_place.vt, target);
        EXPECT_EQ(show(in_place), expected);
    } else { // apart it is empty, in place unchanged
        EXPECT_EQ(apart.vt, QZVT_EMPTY);
        EXPECT_EQ(in_place.vt, source.vt);
        EXPECT_EQ(show(in_place), show(source));
    }
}

TEST_F(VariantConvert, EveryPairOfTypes) {
    CountingObject object;
    const auto round = [&object] {
        const auto samples = one_of_each(object);
        for (unsigned short target = 0; target < QZVT_COUNT; ++target)
            for (unsigned short source = 0; source < QZVT_COUNT; ++source) {
                const bool to_text = target == QZVT_TEXT || target == QZVT_WTEXT;
                const char* const expected = to_text ? kTexts[source] : kMatrix[target][source];
                const std::string quoted = "'" + std::string(expected != kNone ? expected : "") + "'";
                check_conversion(samples[source], target,
                                 to_text && expected != kNone ? quoted.c_str() : expected);
            }
    };
    round();
    EXPECT_EQ(object.references, 1u);
    const std::size_t before = live_blocks();
    round();
    EXPECT_EQ(live_blocks(), before);
}

TEST_F(VariantConvert, InvalidSourcesCountAsZeroExceptForTexts) {
    static const char* const zeroes[QZVT_COUNT] = {
        "",      "0",   "0",   "0",   "0",   "0",       "0",       "0",      "0",    "0",
        nullptr, "0,0", "0,0", "0,0", "0,0", "0,0,0,0", "0,0,0,0", "0 null", "null", nullptr,
    };
    for (const unsigned short vt : {20, 16383, 16384, 65535}) {
        CQZVariant source(tagRRECT{1, 2, 3, 4});
        source.vt = vt;
        for (unsigned short target = 0; target < QZVT_COUNT; ++target)
            check_conversion(source, target, zeroes[target]);
    }
}

TEST_F(VariantConvert, InvalidTargetsFail) {
    CountingObject object;
    for (const CQZVariant& source : one_of_each(object))
        for (const unsigned short target : {20, 21, 16383, 16385, 65535})
            check_conversion(source, target, kNone);
}

TEST_F(VariantConvert, AnInterfaceByReferenceCarriesNoReference) {
    CountingObject object;
    for (const CQZVariant& source : one_of_each(object)) {
        SCOPED_TRACE(source.vt);
        const unsigned held = object.references;
        CQZVariant out("old");
        EXPECT_EQ(out.ChangeType(QZVT_OBJECT_REF, const_cast<CQZVariant*>(&source)),
                  source.vt == QZVT_OBJECT);
        EXPECT_EQ(object.references, held);
        EXPECT_EQ(out.vt, source.vt == QZVT_OBJECT ? QZVT_OBJECT_REF : QZVT_EMPTY);
        EXPECT_EQ(out.pUnkVal, source.vt == QZVT_OBJECT ? &object : nullptr);
    }
    CQZVariant v(&object);
    EXPECT_EQ(v.ChangeType(QZVT_OBJECT_REF), 1); // in place: the reference is given up
    EXPECT_EQ(object.references, 1u);
    EXPECT_EQ(v.pUnkVal, &object);
    EXPECT_EQ(QZVariantChangeType(&v, &v, QZVT_OBJECT_REF), 1); // from an invalid code: without the pointer
    EXPECT_EQ(v.vt, QZVT_OBJECT_REF);
    EXPECT_EQ(v.pUnkVal, nullptr);
}

TEST_F(VariantConvert, ChangeTypeToTheOwnTypeTouchesNothing) {
    CQZVariant v("text");
    const char* const text = v.pszVal;
    EXPECT_EQ(v.ChangeType(QZVT_TEXT), 1);
    EXPECT_EQ(v.pszVal, text);
    EXPECT_EQ(v.ChangeType(QZVT_TEXT, &v), 1);
    EXPECT_EQ(v.pszVal, text);
    v.vt = 20;
    EXPECT_EQ(v.ChangeType(20), 1); // not even whether there is such a type
    v.vt = QZVT_TEXT;
    EXPECT_EQ(v.ChangeType(QZVT_WTEXT), 1);
    EXPECT_EQ(show(v), "'text'");
}

// The source may belong to what the target holds: it is read before that goes.
TEST_F(VariantConvert, TheOldValueOutlivesTheConversion) {
    CQZVariant source(5);
    CountingObject object;
    object.on_release = [](void* inside) { static_cast<CQZVariant*>(inside)->Clear(); };
    object.watched = &source;
    CQZVariant target(&object);
    EXPECT_EQ(target.ChangeType(QZVT_DOUBLE, &source), 1);
    EXPECT_EQ(source.vt, QZVT_EMPTY);
    EXPECT_EQ(target.vt, QZVT_DOUBLE);
    EXPECT_EQ(show(target), "5");

    CQZVariant text("a text of some length");
    tagQZVARIANT view = text; // the same characters, not owned twice
    EXPECT_EQ(text.ChangeType(QZVT_WTEXT, &view), 1);
    EXPECT_EQ(show(text), "'a text of some length'");
}

// Texts that are numbers are the runtime's affair, which another test compares them with.
TEST_F(VariantConvert, NumbersFromText) {
    const struct {
        const char* text;
        unsigned short vt;
        const char* value; // null: no number
    } rows[] = {
        {"12abc", QZVT_INT, "12"},        {" \t\n\v\f\r-12", QZVT_LONG, "-12"},
        {"0x1F", QZVT_INT, "0"},          {"1,5", QZVT_DOUBLE, "1"},
        {"-1.25e2", QZVT_DOUBLE, "-125"}, {"16777217", QZVT_FLOAT, "16777216"}, // beyond 24 bits
        {"1", QZVT_BOOL, kNone},          {"Yes", QZVT_BOOL, kNone},
        {"7", QZVT_UCHAR, kNone},         {"7", QZVT_USHORT, kNone},
        {"7", QZVT_ULONG, kNone},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        check_conversion(CQZVariant(row.text), row.vt, row.value);
        CQZVariant wide(row.text);
        ASSERT_NE(static_cast<wchar_t*>(wide), nullptr);
        check_conversion(wide, row.vt, row.value);
    }
    check_conversion(CQZVariant(L"4000000000"), QZVT_UINT, "4000000000");
    check_conversion(CQZVariant(L"-1"), QZVT_UINT, "4294967295");
    check_conversion(CQZVariant(static_cast<const char*>(nullptr)), QZVT_INT, kNone);
    check_conversion(CQZVariant(static_cast<const wchar_t*>(nullptr)), QZVT_DOUBLE, kNone);
}

TEST_F(VariantConvert, NarrowTextBecomesUnsignedByWayOfTheWideScanner) {
    check_conversion(CQZVariant("7"), QZVT_UINT, "7");
    check_conversion(CQZVariant("12"), QZVT_UINT, kNone); // the one unit U+3231
    check_conversion(CQZVariant("123"), QZVT_UINT, kNone);
    check_conversion(CQZVariant(""), QZVT_UINT, kNone);
    check_conversion(CQZVariant(" \n1"), QZVT_UINT, kNone);
    check_conversion(CQZVariant(static_cast<const char*>(nullptr)), QZVT_UINT, kNone);
    check_conversion(CQZVariant(std::string(100000, '1').c_str()), QZVT_UINT, kNone);
}

// The bits of a double that becomes an unsigned long are taken for the address of a text.
TEST_F(VariantConvert, ADoubleIsTakenForTheAddressOfAText) {
    const auto address_as_double = [](const void* address) {
        return CQZVariant(std::bit_cast<double>(reinterpret_cast<unsigned long long>(address)));
    };
    static const char number[] = "4000000000 apples";
    check_conversion(address_as_double(number), QZVT_ULONG, "4000000000");
    check_conversion(address_as_double("apples"), QZVT_ULONG, kNone);
    static const double hostile[] = {
        0.0, 1.0, -1.0, 5e-324, 1e-310, 3.5e9, std::numeric_limits<double>::max(), -5e-324,
    };
    for (const double bits : hostile) {
        SCOPED_TRACE(bits);
        check_conversion(CQZVariant(bits), QZVT_ULONG, kNone);
    }

    // A text that runs up to the end of what can be read.
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    const std::size_t page = system.dwPageSize;
    auto* const pages = static_cast<char*>(VirtualAlloc(nullptr, 3 * page, MEM_RESERVE, PAGE_NOACCESS));
    ASSERT_NE(VirtualAlloc(pages, page, MEM_COMMIT, PAGE_READWRITE), nullptr);
    ASSERT_NE(VirtualAlloc(pages + page, page, MEM_COMMIT, PAGE_READWRITE | PAGE_GUARD), nullptr);
    std::memset(pages, ' ', page);
    std::memcpy(pages + page - 2, "42", 2);
    check_conversion(address_as_double(pages + page - 2), QZVT_ULONG, "42");
    check_conversion(address_as_double(pages + page), QZVT_ULONG, kNone); // guarded
    check_conversion(address_as_double(pages + 2 * page), QZVT_ULONG, kNone);
    EXPECT_EQ(VirtualFree(pages, 0, MEM_RELEASE), TRUE);
}

TEST_F(VariantConvert, RealsAreCutAndCoordinatesRounded) {
    const double out_of_range = 3e9, nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        double real;
        const char *cut, *cut_unsigned, *rounded;
    } rows[] = {
        {0, "0", "0", "0"},
        {0.5, "0", "0", "1"},
        {-0.5, "0", "0", "0"},
        {2.5, "2", "2", "3"},
        {-2.5, "-2", "4294967294", "-2"},
        {-2.6, "-2", "4294967294", "-3"},
        {2.4999999, "2", "2", "2"},
        {-2.50000011, "-2", "4294967294", "-3"},
        {2147483647, "2147483647", "2147483647", "2147483647"},
        {-2147483648.0, "-2147483648", "2147483648", "-2147483648"},
        {out_of_range, "-2147483648", "3000000000", "-2147483648"},
        {4294967296.0 + 5, "-2147483648", "5", "-2147483648"},
        {1e19, "-2147483648", "0", "-2147483648"},
        {-1e300, "-2147483648", "0", "-2147483648"},
        {nan, "-2147483648", "0", "-2147483648"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.real);
        check_conversion(CQZVariant(row.real), QZVT_INT, row.cut);
        check_conversion(CQZVariant(row.real), QZVT_LONG, row.cut);
        check_conversion(CQZVariant(row.real), QZVT_UINT, row.cut_unsigned);
        check_conversion(CQZVariant(tagRPOINT{row.real, 0}), QZVT_POINT,
                         (row.rounded + std::string(",0")).c_str());
        check_conversion(CQZVariant(tagRSIZE{0, row.real}), QZVT_SIZE,
                         ("0," + std::string(row.rounded)).c_str());
    }
    check_conversion(CQZVariant(nan), QZVT_BOOL, "0");
    check_conversion(CQZVariant(-0.0), QZVT_BOOL, "0");
    check_conversion(CQZVariant(1e-300), QZVT_BOOL, "1");
    check_conversion(CQZVariant(static_cast<float>(nan)), QZVT_BOOL, "0");
    check_conversion(CQZVariant(3e9f), QZVT_INT, "-2147483648");
    check_conversion(CQZVariant(3e9f), QZVT_UINT, "3000000000");
}

TEST_F(VariantConvert, EdgesOfRectanglesMoveByOne) {
    constexpr int kMin = std::numeric_limits<int>::min(), kMax = std::numeric_limits<int>::max();
    check_conversion(CQZVariant(tagRRECT{-0.5, -2.5, -0.5, -1.6}), QZVT_RECT, "0,-2,1,-1");
    check_conversion(CQZVariant(tagRRECT{0, 0, kMax, 1e300}), QZVT_RECT, "0,0,-2147483648,-2147483647");
    check_conversion(CQZVariant(tagRECT{kMin, kMax, kMin, kMax}), QZVT_RRECT,
                     "-2147483648,2147483647,2147483647,2147483646");
}

// Narrow text is in the code page of the process.
TEST_F(VariantConvert, TextsChangeWidthAsStringsDo) {
    for (const char* const text :
         {"", "\xCF\xF0\xE8", "caf\xE9 ", "\x93\xFA\x96\x7B", "\x83\x5C\\", "x\x81"}) {
        SCOPED_TRACE(testing::PrintToString(text));
        const CXStringW wide(text);
        CQZVariant converted(text), cast(text);
        ASSERT_EQ(converted.ChangeType(QZVT_WTEXT), 1);
        EXPECT_STREQ(converted.pwszVal, wide.GetData());
        EXPECT_STREQ(static_cast<wchar_t*>(cast), wide.GetData());
        ASSERT_EQ(converted.ChangeType(QZVT_TEXT), 1);
        EXPECT_STREQ(converted.pszVal, CXString(wide.GetData()).GetData());
    }
}

TEST_F(VariantConvert, FalseAndNullTextsAsTexts) {
    check_conversion(CQZVariant(0, 1), QZVT_TEXT, "'No'");
    check_conversion(CQZVariant(0, 1), QZVT_WTEXT, "'No'");
    const CQZVariant narrow(static_cast<const char*>(nullptr)), wide(static_cast<const wchar_t*>(nullptr));
    check_conversion(narrow, QZVT_TEXT, "null");
    check_conversion(narrow, QZVT_WTEXT, "''");
    check_conversion(wide, QZVT_TEXT, "''");
    check_conversion(wide, QZVT_WTEXT, "null");
}

} // namespace
