// Block-wise scanning: every offset and length around the block size, in memory that ends where the text
// ends.
#include "string/ascii_case.h"
#include "string/multibyte.h"
#include "string/scan.h"
#include "support/fenced_page.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include <windows.h>

namespace {

using namespace qzr;

template <class Unit>
class Scanning : public testing::Test {};
struct WidthNames {
    template <class Unit>
    static std::string GetName(int) {
        return sizeof(Unit) == 1 ? "Narrow" : "Wide";
    }
};
using Widths = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(Scanning, Widths, WidthNames);

const char* find_first(const char* b, const char* e, char c) { return find_byte(b, e, c); }
const wchar_t* find_first(const wchar_t* b, const wchar_t* e, wchar_t c) { return find_unit(b, e, c); }
const char* find_last(const char* b, const char* e, char c) { return find_last_byte(b, e, c); }
const wchar_t* find_last(const wchar_t* b, const wchar_t* e, wchar_t c) { return find_last_unit(b, e, c); }

TYPED_TEST(Scanning, StaysInBoundsAtBothEndsOfAPage) {
    const FencedPage page;
    for (std::size_t n = 0; n <= 70; ++n) {
        SCOPED_TRACE(n);
        auto* const last = reinterpret_cast<TypeParam*>(page.end()) - (n + 1);
        auto* const first = reinterpret_cast<TypeParam*>(page.begin());
        for (TypeParam* text : {last, first}) {
            std::fill_n(text, n, TypeParam('a'));
            text[n] = 0;
            ASSERT_EQ(text_length(text), n);
            ASSERT_EQ(text_length(text, n / 2), n / 2);
            ASSERT_EQ(find_first(text, text + n, TypeParam('b')), nullptr);
            ASSERT_EQ(find_last(text, text + n, TypeParam('b')), nullptr);
            ASSERT_EQ(skip_ascii(text, text + n), text + n);
            const TypeParam wanted[] = {TypeParam('a'), TypeParam('b')};
            ASSERT_EQ(find_text(text, text + n, wanted, 2), nullptr);
            ASSERT_EQ(common_prefix(text, text, n), n);
            ASSERT_EQ(common_ascii_prefix(text, text, n), n);
            ASSERT_EQ(ascii_upper(text, text + n), text + n);
        }
    }
    // A text that ends without a terminator, measured to its limit.
    auto* const open = reinterpret_cast<TypeParam*>(page.end()) - 21;
    std::fill_n(open, 21, TypeParam('a'));
    EXPECT_EQ(text_length(open, 21), 21U);
}

// Units whose bytes are zero, or that are negative as signed numbers, beside each other in whole lines.
TYPED_TEST(Scanning, TakesNoOtherUnitForTheEnd) {
    const unsigned units[] = {0x01, 0x7F, 0x80, 0xFF, 0x100, 0x7FFF, 0x8000, 0xFF00};
    for (const unsigned a : units)
        for (const unsigned b : units) {
            const auto other = static_cast<TypeParam>(a);
            const auto unit = static_cast<TypeParam>(b);
            if (other == 0 || unit == 0) continue;
            SCOPED_TRACE(std::to_string(a) + " and " + std::to_string(b));
            std::basic_string<TypeParam> text(300, unit);
            for (std::size_t at = 0; at < text.size(); at += 16 / sizeof(TypeParam))
                text[at] = other;
            for (std::size_t from = 0; from < 70; ++from) {
                ASSERT_EQ(text_length(text.c_str() + from), text.size() - from);
                ASSERT_EQ(text_length(text.c_str() + from, text.size()), text.size() - from);
                ASSERT_EQ(measure_text(text.c_str() + from).length, text.size() - from);
            }
        }
}

TYPED_TEST(Scanning, FindsAtEveryPlace) {
    std::basic_string<TypeParam> text(64, TypeParam('a'));
    for (std::size_t from = 0; from < 18; ++from)
        for (std::size_t at = from; at + 3 <= text.size(); ++at) {
            SCOPED_TRACE(std::to_string(at) + " from " + std::to_string(from));
            auto changed = text;
            changed[at] = TypeParam('x'), changed[at + 1] = TypeParam('y'), changed[at + 2] = TypeParam('x');
            const TypeParam* const begin = changed.data() + from;
            const TypeParam* const end = changed.data() + changed.size();
            ASSERT_EQ(find_first(begin, end, TypeParam('x')), changed.data() + at);
            ASSERT_EQ(find_last(begin, end, TypeParam('x')), changed.data() + at + 2);
            ASSERT_EQ(find_text(begin, end, changed.data() + at, 3), changed.data() + at);
            ASSERT_EQ(find_text(begin, end, changed.data() + at, 0), begin);
            ASSERT_EQ(common_prefix(begin, text.data() + from, text.size() - from), at - from);
            changed[at] = static_cast<TypeParam>(0x80);
            ASSERT_EQ(skip_ascii(begin, end), changed.data() + at);
            ASSERT_EQ(common_ascii_prefix(begin, begin, text.size() - from), at - from);
        }
}

TYPED_TEST(Scanning, MapsCaseUpToTheFirstUnitBeyondASCII) {
    for (std::size_t special = 0; special < 40; ++special) {
        std::basic_string<TypeParam> text;
        for (std::size_t i = 0; i < 40; ++i)
            text += static_cast<TypeParam>(i == special ? 0xE0 : "aZ[`z{@m"[i % 8]);
        std::basic_string<TypeParam> expected = text;
        for (std::size_t i = 0; i < special; ++i)
            if (expected[i] >= 'A' && expected[i] <= 'Z')
                expected[i] = static_cast<TypeParam>(expected[i] + 32);
        TypeParam* const stop = ascii_lower(text.data(), text.data() + text.size());
        ASSERT_EQ(static_cast<std::size_t>(stop - text.data()), special);
        ASSERT_EQ(text, expected);
    }
}

// Code page 932, whatever the process runs in.
constexpr LeadBytes kLeads932(0x00000000FFFFFFFEULL, 0x1FFFFFFF00000000ULL);

TEST(Multibyte, KnowsLeadBytes) {
    for (int c = 0; c < 256; ++c)
        ASSERT_EQ(kLeads932(static_cast<char>(c)), (c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xFC)) << c;
    const LeadBytes current = lead_bytes();
    for (int c = 0; c < 256; ++c)
        ASSERT_EQ(current(static_cast<char>(c)), IsDBCSLeadByte(static_cast<BYTE>(c)) != 0) << c;
}

TEST(Multibyte, NoStepPassesTheTerminator) {
    const struct {
        const char* text;
        std::size_t characters;
    } rows[] = {{"", 0},         {"\x83", 1},         {"a\x83", 2},      {"\x83\\", 1},
                {"\x83\x83", 1}, {"\x83\x83\x83", 2}, {"\xB1\x83\\", 2}, {"a\x83\\b\x83", 4}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        const char* const end = row.text + std::strlen(row.text);
        std::size_t steps = 0;
        for (const char* p = row.text; *p != 0; p = mb_next(p, kLeads932))
            ASSERT_LE(++steps, row.characters);
        EXPECT_EQ(steps, row.characters);
        EXPECT_EQ(mb_count(row.text, end, kLeads932), row.characters);
        EXPECT_EQ(mb_advance(row.text, end, row.characters, kLeads932), end);
        EXPECT_EQ(mb_advance(row.text, end, ~std::uint64_t{0}, kLeads932), end);
        EXPECT_EQ(mb_next(end, kLeads932), end);
    }
}

TEST(Multibyte, FindsASCIIAtCharacters) {
    const char text[] = "\x83\\a\\b\x83\\";
    const char* const end = text + sizeof text - 1;
    EXPECT_EQ(mb_find(text, end, '\\', kLeads932), text + 3);
    EXPECT_EQ(mb_find_last(text, end, '\\', kLeads932), text + 3);
    EXPECT_EQ(mb_find_last_of(text, end, ":\\", kLeads932), text + 3);
    EXPECT_EQ(mb_find(text, end, '|', kLeads932), nullptr);
    EXPECT_EQ(mb_find_last(text, text, '\\', kLeads932), nullptr);
    EXPECT_EQ(mb_find(text, end, '\\', LeadBytes()), text + 1);
    EXPECT_EQ(mb_find_last(text, end, '\\', LeadBytes()), text + 6);
}

} // namespace
