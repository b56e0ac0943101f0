// How the lines of a dictionary file are read. The dictionary never forgets, so each row has source texts of
// its own.
#include "dictionary_files.h"

#include "qzstring.h"
#include "qzsupp.h"

#include <gtest/gtest.h>

#include <vector>

#include <windows.h>

namespace {

std::string narrow(const wchar_t* text) { return text != nullptr ? CXString(text).GetData() : "(null)"; }

std::string translation_of(const std::string& text) {
    return narrow(Supp_Translate(CXStringW(text.c_str()).GetData()));
}

struct Lookup {
    std::string text;
    std::string expected;
};

struct Row {
    const char* what;
    std::string file;
    std::vector<Lookup> lookups;
};

// What is expected of a text that has no entry.
Lookup unknown(const std::string& text) { return {text, text}; }

void check(const std::vector<Row>& rows) {
    DictionaryFiles files;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(files.add(row.file), 1);
        for (const Lookup& lookup : row.lookups)
            EXPECT_EQ(translation_of(lookup.text), lookup.expected) << "of '" << lookup.text << "'";
    }
}

TEST(DictionaryReading, TakesQuotedLinesInPairs) {
    check({
        {"one pair", "\"Open\"\r\n\"Ouvrir\"\r\n", {{"Open", "Ouvrir"}, unknown("open"), unknown("Ope")}},
        {"an empty file", "", {unknown("nothing")}},
        {"line feeds alone, none at the end", "\"lf\"\n\"LF\"", {{"lf", "LF"}}},
        {"a carriage return alone ends no line", "\"cr\"\r\"CR\"\r", {unknown("cr")}},
        {"white space around", " \t\"ws\" \v\f\r\n\t\"WS\"\t\r\n", {{"ws", "WS"}}},
        {"white space within", "\" in \"\n\" IN \"\n", {{" in ", " IN "}, unknown("in")}},
        {"other lines around", "x\n;\"c1\"\n\n \"o\"\n\r\n;c\nplain\n\t\n'q'\n\"O\"\n;end", {{"o", "O"}}},
        {"blank before a comment mark", "\"bc1\"\n ;\"no\"\n\"BC1\"\n", {{"bc1", "BC1"}}},
        {"a lone quote", "\"\n\"lq\"\n\"\n\"LQ\"\n", {{"lq", "LQ"}}},
        {"no closing quote", "\"openend\n\"OPENEND\n", {{"openen", "OPENEN"}}},
        {"something behind it", "\"be\" hind\n\"BE\"x\n", {{"be\" hin", "BE\""}}},
        {"quotes within", "\"say \"so\"\"\n\"dis \"oui\"\"\n", {{"say \"so\"", "dis \"oui\""}}},
        {"a zero byte ends a line", std::string("\"zero\0x\"\n\"ZERO\"\n", 17), {{"zer", "ZERO"}}},
    });
}

TEST(DictionaryReading, ResolvesEscapes) {
    check({
        {"control characters", pair_lines("e1\\na\\rb\\tc", "E1\\n\\r\\t."), {{"e1\na\rb\tc", "E1\n\r\t."}}},
        {"others keep the backslash", pair_lines("e2\\x\\\"\\N", "E2\\q"), {{"e2\\x\\\"\\N", "E2\\q"}}},
        {"several count as one", pair_lines("e3\\\\\\n\\\\x", "E3"), {{"e3\n\\x", "E3"}}},
        {"one at the end goes", pair_lines("e4\\", "E4\\\\"), {{"e4", "E4"}}},
        {"nothing but one", pair_lines("e5", "\\"), {unknown("e5")}},
    });
}

TEST(DictionaryReading, GivesASourceWithoutPartnerTheTranslationBefore) {
    check({
        {"the last of three",
         "\"odd a\"\n\"ODD\\x41\\n\"\n\"odd b\"\n",
         {{"odd a", "ODD\\x41\n"}, {"odd b", "ODD\\x41\n"}}},
        {"the only one", "\"odd c\"\n", {unknown("odd c")}},
        {"an empty translation is the source", pair_lines("hollow\\n", ""), {unknown("hollow\n")}},
    });
}

TEST(DictionaryReading, KeepsTheFirstOfEqualSources) {
    check({
        {"in one file", pair_lines("same", "first") + pair_lines("same", "second"), {{"same", "first"}}},
        {"in a later file",
         pair_lines("same", "third") + pair_lines("more", "fourth"),
         {{"same", "first"}, {"more", "fourth"}}},
        {"after escapes", pair_lines("s\\\\\\n", "first") + pair_lines("s\\n", "second"), {{"s\n", "first"}}},
    });
}

TEST(DictionaryReading, TakesTextsOfOneHashForTheSame) {
    DictionaryFiles files;
    // 'n' * 257 + 'a' is 'm' * 257 + U+0162.
    ASSERT_EQ(files.add(pair_lines("hash na", "first")), 1);
    EXPECT_EQ(narrow(Supp_Translate(L"hash na")), "first");
    EXPECT_EQ(narrow(Supp_Translate(L"hash m\x0162")), "first");
}

TEST(DictionaryReading, ReadsLongLinesInPieces) {
    constexpr std::size_t kPiece = 8192;
    const std::string longest(kPiece - 2, 'l');
    const std::string piece(kPiece - 2, 'p'); // a quote, these, and one more that is removed
    const std::string other(kPiece - 2, 'o');
    check({
        {"a line that just fits", pair_lines(longest, "fits"), {{longest, "fits"}}},
        {"one that does not", pair_lines(piece + "p and the rest", "cut"), {{piece, "cut"}}},
        {"whose rest looks like a line of its own", "\"" + other + "o\"the rest\"\n", {{other, "the rest"}}},
        {"100 pieces",
         std::string(100 * kPiece, ' ') + "\n" + pair_lines("after blanks", "AFTER"),
         {{"after blanks", "AFTER"}}},
    });
}

TEST(DictionaryReading, StepsOverWholeCharacters) {
    if (GetACP() == 932) {
        check({
            // 0x83 0x5C is one character, its second byte no backslash.
            {"second bytes", pair_lines("d1\x83\x5C", "\x83\x5Cn"), {{"d1\x83\x5C", "\x83\x5Cn"}}},
            {"behind a backslash", pair_lines("d2\\\x83\x5C", "D2"), {{"d2\\\x83\x5C", "D2"}}},
            {"an escape before", pair_lines("d3\\\\\\n\x83\x5C\\t", "D3"), {{"d3\n\x83\x5C\t", "D3"}}},
            {"wide blanks", "\x81\x40\"d4\"\x81\x40 \r\n\"D4\"\x81\x40\n", {{"d4", "D4"}}},
            {"the closing quote inside a character", "\"d5\x83\"\n\"D5\"\n", {{"d5", "D5"}}},
            {"a lead byte at the end of a line", "\"d6\"\x83\n\"D6\"\n", {{"d6\"", "D6"}}},
        });
    } else {
        check({
            {"all characters are single", pair_lines("s1\x83\x5Cn", "\xFD"), {{"s1\x83\n", "\xFD"}}},
            {"the closing quote is one", "\"s2\x83\"\n\"S2\"\n", {{"s2\x83", "S2"}}},
        });
    }
}

} // namespace
