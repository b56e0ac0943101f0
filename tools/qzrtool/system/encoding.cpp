#include "system/encoding.h"

#include "system/failure.h"

namespace tool {

namespace {

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
