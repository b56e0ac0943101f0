#include "system/encoding.h"

#include "system/failure.h"

#include <algorithm>

namespace tool {

namespace {

bool continues(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

std::string escape_of(unsigned char code) {
    switch (code) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        return "\\x" + hex_text(&code, 1);
    }
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
        const auto byte = static_cast<unsigned char>(utf8_text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < utf8_text.size() ? utf8_text[i + 1] : '\0');
        if (byte < 0x20 || byte == 0x7F) {
            out += escape_of(byte);
        } else if (byte == 0xC2 && next >= 0x80 && next < 0xA0) { // the second set of controls
            out += escape_of(next);
            ++i;
        } else {
            out += utf8_text[i];
        }
    }
    return out;
}

std::string hex_text(const void* bytes, std::size_t count) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(2 * count);
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned byte = bytes != nullptr ? static_cast<const unsigned char*>(bytes)[i] : 0u;
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

bool has_word(std::string_view words, std::string_view word) {
    while (!words.empty()) {
        const std::size_t blank = std::min(words.find(' '), words.size());
        if (words.substr(0, blank) == word) return true;
        words.remove_prefix(std::min(blank + 1, words.size()));
    }
    return false;
}

} // namespace tool
