// Dialog templates with other texts: bytes in, bytes out.
#include "supp/dialog_template.h"

#include "tests/support/hex.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using namespace qzr;

// "Yes" becomes "Oui!!", so that everything behind it moves.
const wchar_t* to_french(const wchar_t* text) {
    if (std::wcscmp(text, L"Yes") == 0) return L"Oui!!";
    if (std::wcscmp(text, L"Yes.") == 0) return L"Oui";
    if (std::wcscmp(text, L"nothing") == 0) return L"";
    if (std::wcscmp(text, L"mark") == 0) return L"\xFFFF\x0001";
    return nullptr;
}

// A text as it stands in a template: 16-bit units and a zero.
std::string wide(const char* text) {
    std::string bytes;
    for (const char* p = text;; ++p) {
        bytes += *p;
        bytes += '\0';
        if (*p == 0) return bytes;
    }
}

std::string hex(const char* digits) { return test::from_hex(digits); }

// Starts of templates: their styles (with and without a font), counts of items, and positions.
std::string plain(const char* style, const char* count) {
    return hex(style) + hex("00 00 00 00") + hex(count) + hex("01 00 02 00 64 00 32 00");
}
std::string extended(const char* style, const char* count) {
    return hex("01 00 ff ff 07 00 00 00 00 00 01 00") + hex(style) + hex(count) +
           hex("01 00 02 00 64 00 32 00");
}
const char* const kFont = "40 00 c8 80";
const char* const kNoFont = "00 00 c8 80";
const std::string kNoNames = hex("00 00 00 00"); // neither a menu nor a class

const std::string kPlainItem = hex("00 00 01 50 04 00 00 00 05 00 06 00 07 00 08 00 65 00");
const std::string kExtendedItem =
    hex("63 00 00 00 04 00 00 00 00 00 01 50 05 00 06 00 07 00 08 00 65 00 00 00");
const std::string kButton = hex("ff ff 80 00");
const std::string kNoData = hex("00 00");
const std::string kPad = hex("00 00");

struct Row {
    const char* name;
    std::string in;
    std::string out; // empty: damaged
};

const std::vector<Row>& rows() {
    static const std::vector<Row> all = {
        {"plain, only a caption", plain(kNoFont, "00 00") + kNoNames + wide("Yes"),
         plain(kNoFont, "00 00") + kNoNames + wide("Oui!!")},
        {"extended, only a caption", extended(kNoFont, "00 00") + kNoNames + wide("Yes"),
         extended(kNoFont, "00 00") + kNoNames + wide("Oui!!")},
        {"texts without a translation, or with an unusable one",
         plain(kNoFont, "02 00") + kNoNames + wide("No") + kPlainItem + kButton + wide("nothing") + kNoData +
             kPlainItem + kButton + wide("mark") + kNoData,
         plain(kNoFont, "02 00") + kNoNames + wide("No") + kPlainItem + kButton + wide("nothing") + kNoData +
             kPlainItem + kButton + wide("mark") + kNoData},
        {"plain, names and a font are no texts",
         plain(kFont, "00 00") + wide("Yes") + wide("Yes") + wide("Yes") + hex("08 00") + wide("Yes"),
         plain(kFont, "00 00") + wide("Yes") + wide("Yes") + wide("Oui!!") + hex("08 00") + wide("Yes")},
        {"extended, a menu by number and a font",
         extended(kFont, "00 00") + hex("ff ff 59 00") + hex("00 00") + wide("Yes") +
             hex("08 00 90 01 00 01") + wide("Yes"),
         extended(kFont, "00 00") + hex("ff ff 59 00") + hex("00 00") + wide("Oui!!") +
             hex("08 00 90 01 00 01") + wide("Yes")},
        {"extended, the font of message boxes has no name",
         extended(kFont, "01 00") + kNoNames + wide("Yes") + hex("ff 7f") + kExtendedItem + kButton +
             wide("Yes") + kNoData,
         extended(kFont, "01 00") + kNoNames + wide("Oui!!") + hex("ff 7f") + kExtendedItem + kButton +
             wide("Oui!!") + kNoData},
        // 18 + 4 + 8 = 30 bytes and two of padding; in the copy 34 and two. Each item then takes 18 + 4 + 8 +
        // 2 = 32, in the copy 36.
        {"plain, items move and stay aligned",
         plain(kNoFont, "02 00") + kNoNames + wide("Yes") + kPad + kPlainItem + kButton + wide("Yes") +
             kNoData + kPlainItem + wide("Yes") + wide("") + kNoData,
         plain(kNoFont, "02 00") + kNoNames + wide("Oui!!") + kPad + kPlainItem + kButton + wide("Oui!!") +
             kNoData + kPlainItem + wide("Yes") + wide("") + kNoData},
        // The header takes 26 + 4 + 8 = 38 bytes, in the copy 42; data of an odd length ends in padding.
        {"extended, creation data and texts by number",
         extended(kNoFont, "03 00") + kNoNames + wide("Yes") + kPad + kExtendedItem + kButton + wide("Yes") +
             hex("03 00 'abc'") + hex("00 00 00") + kExtendedItem + kButton + hex("ff ff 09 00 00 00") +
             kPad + kExtendedItem + kButton + wide("Yes") + kNoData,
         extended(kNoFont, "03 00") + kNoNames + wide("Oui!!") + kPad + kExtendedItem + kButton +
             wide("Oui!!") + hex("03 00 'abc'") + hex("00 00 00") + kExtendedItem + kButton +
             hex("ff ff 09 00 00 00") + kPad + kExtendedItem + kButton + wide("Oui!!") + kNoData},
        // The size counts itself: 6 is four bytes of data.
        {"plain, creation data",
         plain(kNoFont, "02 00") + kNoNames + wide("") + kPlainItem + kButton + wide("") +
             hex("06 00 'abcd'") + kPad + kPlainItem + kButton + wide("Yes") + kNoData,
         plain(kNoFont, "02 00") + kNoNames + wide("") + kPlainItem + kButton + wide("") +
             hex("06 00 'abcd'") + kPad + kPlainItem + kButton + wide("Oui!!") + kNoData},
        // It counts the data alone: read the other way the second item would have no class. In the copy both
        // find it: two zeroes more are counted.
        {"plain, creation data of other tools",
         plain(kNoFont, "02 00") + kNoNames + wide("") + kPlainItem + kButton + wide("") +
             hex("04 00 'abcd'") + kPad + kPlainItem + kButton + wide("Yes") + kNoData,
         plain(kNoFont, "02 00") + kNoNames + wide("") + kPlainItem + kButton + wide("") +
             hex("06 00 'abcd' 0000") + kPlainItem + kButton + wide("Oui!!") + kNoData},
        // The padding takes up the difference, so the last two bytes may be data. In the copy it does not.
        {"plain, creation data that may be either",
         plain(kNoFont, "02 00") + kNoNames + wide("") + kPlainItem + kButton + wide("") +
             hex("06 00 'abcdef'") + kPlainItem + kButton + wide("Yes") + hex("04 00 'gh'"),
         plain(kNoFont, "02 00") + kNoNames + wide("") + kPlainItem + kButton + wide("") +
             hex("06 00 'abcdef'") + kPlainItem + kButton + wide("Oui!!") + hex("04 00 'gh' 0000")},
        {"plain, creation data that moves",
         plain(kNoFont, "02 00") + kNoNames + wide("") + kPlainItem + kButton + wide("Yes.") +
             hex("06 00 'abcdef'") + kPlainItem + kButton + wide("") + kNoData,
         plain(kNoFont, "02 00") + kNoNames + wide("") + kPlainItem + kButton + wide("Oui") +
             hex("08 00 'abcdef' 0000") + kPlainItem + kButton + wide("") + kNoData},
        // Read the other way the second item would lie elsewhere: this is how it is read, and it stays.
        {"plain, creation data that counts itself",
         plain(kNoFont, "02 00") + kNoNames + wide("") + kPlainItem + kButton + wide("") + hex("04 00 'ab'") +
             kPlainItem + kButton + wide("Yes") + kNoData + hex("00 00 00 00"),
         plain(kNoFont, "02 00") + kNoNames + wide("") + kPlainItem + kButton + wide("") + hex("04 00 'ab'") +
             kPlainItem + kButton + wide("Oui!!") + kNoData},
        {"nothing", "", ""},
        {"a part of a header", plain(kNoFont, "00 00").substr(0, 17), ""},
        {"a caption without its end", plain(kNoFont, "00 00") + kNoNames + hex("59 00 65 00"), ""},
        {"more items than there are",
         plain(kNoFont, "02 00") + kNoNames + wide("") + kPlainItem + kButton + wide("") + kNoData, ""},
        {"65535 items that are not there", plain(kNoFont, "ff ff") + kNoNames + wide(""), ""},
        {"a control without a class",
         plain(kNoFont, "01 00") + kNoNames + wide("") + kPlainItem + hex("00 00") + wide("x") + kNoData, ""},
        {"more creation data than there is",
         extended(kNoFont, "01 00") + kNoNames + wide("") + kPad + kExtendedItem + kButton + wide("") +
             hex("ff ff 'abc'"),
         ""},
        {"half a number", plain(kNoFont, "00 00") + hex("ff ff 01"), ""},
    };
    return all;
}

TEST(DialogTemplate, TextsAreReplacedAndTheRestStays) {
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.name);
        DialogCopy copy;
        const bool sound =
            translate_dialog_template(row.in.data(), row.in.size(), DialogChanges{to_french, {}}, copy);
        EXPECT_EQ(sound, !row.out.empty());
        if (sound) {
            const std::string out(reinterpret_cast<const char*>(copy.data()), copy.size());
            EXPECT_EQ(test::to_hex(out), test::to_hex(row.out));
        }
    }
}

TEST(DialogTemplate, PlacesAreReplaced) {
    const RECT dialog = {0, 0, 0x1122, 0x3344};
    const RECT control = {-1, 2, 4, 10};
    const DialogChanges changes{to_french, [&](unsigned item) -> const RECT* {
                                    return item == 0 ? &dialog : item == 0x65 ? &control : nullptr;
                                }};
    const std::string other = hex("00 00 01 50 04 00 00 00 05 00 06 00 07 00 08 00 00 00");
    const std::string rest = kButton + wide("") + kNoData;
    const std::string in[] = {plain(kNoFont, "02 00") + kNoNames + wide("") + kPlainItem + rest + kPad +
                                  other + rest,
                              extended(kNoFont, "01 00") + kNoNames + wide("") + kExtendedItem + rest};
    const std::string out[] = {
        hex(kNoFont) + hex("00 00 00 00 02 00 01 00 02 00 22 11 44 33") + kNoNames + wide("") +
            kPlainItem.substr(0, 8) + hex("ff ff 02 00 05 00 08 00 65 00") + rest + kPad + other + rest,
        hex("01 00 ff ff 07 00 00 00 00 00 01 00") + hex(kNoFont) + hex("01 00 01 00 02 00 22 11 44 33") +
            kNoNames + wide("") + kExtendedItem.substr(0, 12) + hex("ff ff 02 00 05 00 08 00 65 00 00 00") +
            rest};
    for (const int row : {0, 1}) {
        DialogCopy copy;
        ASSERT_TRUE(translate_dialog_template(in[row].data(), in[row].size(), changes, copy));
        EXPECT_EQ(test::to_hex({reinterpret_cast<const char*>(copy.data()), copy.size()}),
                  test::to_hex(out[row]));
    }
}

TEST(DialogTemplate, LongTextsAreDamage) {
    for (const bool fits : {true, false}) {
        std::string text;
        for (std::size_t i = 0; i < (fits ? 65535u : 65536u); ++i)
            text += std::string("x\0", 2);
        const std::string in = plain(kNoFont, "00 00") + kNoNames + text + hex("00 00");
        DialogCopy copy;
        EXPECT_EQ(translate_dialog_template(in.data(), in.size(), DialogChanges{to_french, {}}, copy), fits);
    }
}

} // namespace
