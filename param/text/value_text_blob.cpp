// The rows whose length varies: nothing, texts and blobs.
#include "core/allocator.h"
#include "param/text/value_text_rows.h"
#include "qzstring.h"

#include <array>
#include <cstring>

namespace qzr {

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";
constexpr unsigned char kNoDigit = 0xFF;

constexpr auto kHexValues = [] {
    std::array<unsigned char, 256> values{};
    values.fill(kNoDigit);
    for (unsigned char i = 0; i < 16; ++i) {
        const char digit = kHexDigits[i];
        values[static_cast<unsigned char>(digit)] = i;
        if (digit >= 'A') values[static_cast<unsigned char>(digit - 'A' + 'a')] = i;
    }
    return values;
}();

// Fills bytes, zero so far, with the digits of text in pairs, passing over every other character. There are
// at most as many digits as characters, so a byte for each two characters suffices.
void read_hex(std::string_view text, unsigned char* bytes) {
    std::size_t digits = 0;
    for (const char c : text) {
        const unsigned char digit = kHexValues[static_cast<unsigned char>(c)];
        if (digit == kNoDigit) continue;
        const unsigned shifted = digits % 2 == 0 ? digit * 16U : digit;
        bytes[digits / 2] = static_cast<unsigned char>(bytes[digits / 2] | shifted);
        ++digits;
    }
}

void write_hex(const unsigned char* bytes, std::size_t count, char* out) {
    for (std::size_t i = 0; i < count; ++i) {
        out[2 * i] = kHexDigits[bytes[i] >> 4];
        out[2 * i + 1] = kHexDigits[bytes[i] & 0xF];
    }
}

} // namespace

bool parse_empty(std::string_view, tagQZVARIANT&) { return true; }

void format_empty(const tagQZVARIANT&, TextBuffer&) {}

bool parse_text(std::string_view text, tagQZVARIANT& value) {
    value.pszVal = mem_dup(text.data(), text.size() + 1);
    value.vt = QZVT_TEXT;
    return true;
}

void format_text(const tagQZVARIANT& value, TextBuffer& out) {
    if (value.pszVal != nullptr) out.append(value.pszVal);
}

void format_wide_text(const tagQZVARIANT& value, TextBuffer& out) {
    out.append(CXString(value.pwszVal).GetData());
}

// The size comes from the length of the text, so characters that are no digits leave zero bytes at the end:
// "1G2" is 12 00.
bool parse_blob(std::string_view text, tagQZVARIANT& value) {
    const std::size_t size = (text.size() + 1) / 2;
    if (size > 0xFFFFFFFFU) return false;
    auto* const bytes = size != 0 ? static_cast<unsigned char*>(mem_alloc(size)) : nullptr;
    read_hex(text, bytes);
    value.vt = QZVT_BLOB;
    value.blobVal = {static_cast<unsigned>(size), bytes};
    return true;
}

// Bytes that are not there are written as zeroes, as in streams.
void format_blob(const tagQZVARIANT& value, TextBuffer& out) {
    const std::size_t size = value.blobVal.cbSize;
    char* const digits = out.room(2 * size);
    if (value.blobVal.pBlobData != nullptr) {
        write_hex(static_cast<const unsigned char*>(value.blobVal.pBlobData), size, digits);
    } else {
        std::memset(digits, '0', 2 * size);
    }
    out.added(2 * size);
}

} // namespace qzr
