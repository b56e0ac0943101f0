#include "encoding.h"

#include "diagnostics.h"

#include <cwchar>

namespace tool {

namespace {

bool is_high(wchar_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool is_low(wchar_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

void append_utf8(std::string& out, unsigned code) {
    const auto tail = [&](unsigned shift) { out += static_cast<char>(0x80 | ((code >> shift) & 0x3F)); };
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        tail(0);
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | (code >> 12));
        tail(6);
        tail(0);
    } else {
        out += static_cast<char>(0xF0 | (code >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

bool continues(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

void append_escape(std::string& out, unsigned code) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    switch (code) {
    case '\n':
        out += "\\n";
        return;
    case '\r':
        out += "\\r";
        return;
    case '\t':
        out += "\\t";
        return;
    default:
        break;
    }
    out += "\\x";
    out += kDigits[code >> 4];
    out += kDigits[code & 15];
}

} // namespace

std::string utf8(std::wstring_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned code = text[i];
        if (is_high(text[i]) && i + 1 < text.size() && is_low(text[i + 1])) {
            code = 0x10000 + ((code - 0xD800) << 10) + (text[i + 1] - 0xDC00u);
            ++i;
        } else if (is_high(text[i]) || is_low(text[i])) {
            code = 0xFFFD;
        }
        append_utf8(out, code);
    }
    return out;
}

std::string utf8(const char* narrow_text) {
    const CXStringW wide(narrow_text);
    return utf8(std::wstring_view(wide.GetData()));
}

CXString narrow(const std::wstring& text, const char* what) {
    const CXString result(text.c_str());
    if (CXStringW(result.GetData()) != text.c_str()) {
        fail(std::string(what) + " \"" + printable(utf8(text)) +
             "\" has characters that the ANSI code page cannot hold");
    }
    return result;
}

std::size_t character_count(std::string_view utf8_text) {
    std::size_t count = 0;
    for (const char byte : utf8_text) {
        if (!continues(byte)) ++count;
    }
    return count;
}

std::string_view first_characters(std::string_view utf8_text, std::size_t count) {
    std::size_t end = 0;
    while (end < utf8_text.size()) {
        if (!continues(utf8_text[end]) && count-- == 0) break;
        ++end;
    }
    return utf8_text.substr(0, end);
}

std::string printable(std::string_view utf8_text) {
    std::string out;
    out.reserve(utf8_text.size());
    for (std::size_t i = 0; i < utf8_text.size(); ++i) {
        const unsigned byte = static_cast<unsigned char>(utf8_text[i]);
        const unsigned next = i + 1 < utf8_text.size() ? static_cast<unsigned char>(utf8_text[i + 1]) : 0;
        if (byte < 0x20 || byte == 0x7F) {
            append_escape(out, byte);
        } else if (byte == 0xC2 && next >= 0x80 && next < 0xA0) { // the second set of controls
            append_escape(out, next);
            ++i;
        } else {
            out += utf8_text[i];
        }
    }
    return out;
}

} // namespace tool
