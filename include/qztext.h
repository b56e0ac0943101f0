/// @file
/// Texts of the library seen as texts of the C++ standard library, and the other way round. Header-only.
#pragma once

#include "qzstring.h"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

/// Helpers that make the library pleasant from C++17 on: ranges, typed values, holders. They are inline and
/// stand on the exported functions alone; what they allocate, they allocate and free in the module that uses
/// them.
///
/// They throw what the functions behind them throw, and of the standard library's exceptions
/// std::bad_alloc and, where it is said, std::invalid_argument.
namespace qz {

/// A borrowed text that ends with a zero, the way the library takes names and paths. It is made from a
/// pointer (null counts as empty), from a string of the library, and from whatever has a fitting c_str():
/// std::string, std::wstring, std::filesystem::path. Meant for parameters; it keeps nothing alive. A zero
/// within a std::string ends the text.
template <class Char>
class BasicTextArg {
public:
    /// The strings of the library of that width.
    using String = std::conditional_t<std::is_same_v<Char, char>, CXString, CXStringW>;

    BasicTextArg(const Char* text) noexcept : text_(text != nullptr ? text : kEmpty) {} ///< borrows text
    BasicTextArg(const String& text) : text_(text.GetData()) {}                         ///< borrows text

    /// Borrows the text of anything with a fitting c_str().
    template <class Text, class = std::enable_if_t<std::is_convertible_v<
                              decltype(std::declval<const Text&>().c_str()), const Char*>>>
    BasicTextArg(const Text& text) noexcept : text_(text.c_str()) {}

    const Char* c_str() const noexcept { return text_; }                           ///< @return never null
    std::basic_string_view<Char> view() const noexcept { return text_; }           ///< @return the text
    std::basic_string<Char> str() const { return std::basic_string<Char>(text_); } ///< @return a copy

private:
    static constexpr Char kEmpty[1] = {};
    const Char* text_;
};

using TextArg = BasicTextArg<char>;        ///< a narrow text, such as the name of a value
using WideTextArg = BasicTextArg<wchar_t>; ///< a wide text, such as the path of a file

/// @return the text in place; valid until the string changes
inline std::string_view view(const CXString& text) {
    return std::string_view(text.GetData(), text.GetSize());
}
/// @return the text in place; valid until the string changes
inline std::wstring_view view(const CXStringW& text) {
    return std::wstring_view(text.GetData(), text.GetSize());
}

/// Throws std::invalid_argument for a text with a zero in it, which the library would cut there.
template <class Char>
void refuse_zero(std::basic_string_view<Char> text) {
    if (text.find(Char()) != text.npos) throw std::invalid_argument("a text with a zero in it");
}

/// @return a string of the library with that text. Throws std::invalid_argument for a zero in it.
inline CXString string_of(std::string_view text) {
    refuse_zero(text);
    return CXString(std::string(text).c_str());
}
/// @return a string of the library with that text. Throws std::invalid_argument for a zero in it.
inline CXStringW string_of(std::wstring_view text) {
    refuse_zero(text);
    return CXStringW(std::wstring(text).c_str());
}

/// The parts that the UTF-8 functions below are made of.
namespace detail {

inline bool is_surrogate(unsigned code) { return code >= 0xD800 && code <= 0xDFFF; }
inline constexpr unsigned kReplacement = 0xFFFD;

inline void append_utf8(std::string& out, unsigned code) {
    const auto add = [&out](unsigned byte) { out += static_cast<char>(byte); };
    if (code < 0x80) return add(code);
    if (code < 0x800) {
        add(0xC0 | (code >> 6));
    } else if (code < 0x10000) {
        add(0xE0 | (code >> 12));
        add(0x80 | ((code >> 6) & 0x3F));
    } else {
        add(0xF0 | (code >> 18));
        add(0x80 | ((code >> 12) & 0x3F));
        add(0x80 | ((code >> 6) & 0x3F));
    }
    add(0x80 | (code & 0x3F));
}

/// Takes the first character off the bytes.
/// @return its code; kReplacement, with one byte taken, when they do not begin with a character
inline unsigned take_utf8(std::string_view& bytes) {
    const auto byte = [&bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned first = byte(0);
    const std::size_t size = first < 0x80 ? 1 : first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    constexpr unsigned kLeast[] = {0, 0, 0x80, 0x800, 0x10000}; // what is smaller has a shorter form
    unsigned code = size < 2 ? first : first & (0x7Fu >> size);
    bool good = size != 0 && size <= bytes.size();
    for (std::size_t i = 1; good && i < size; ++i) {
        good = (byte(i) & 0xC0) == 0x80;
        code = (code << 6) | (byte(i) & 0x3Fu);
    }
    good = good && code >= kLeast[size] && code <= 0x10FFFF && !is_surrogate(code);
    bytes.remove_prefix(good ? size : 1);
    return good ? code : kReplacement;
}

} // namespace detail

/// @return the text in UTF-8. Half a surrogate pair becomes U+FFFD: the result is always valid.
inline std::string utf8(std::wstring_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned code = text[i];
        const unsigned next = i + 1 < text.size() ? text[i + 1] : 0u;
        if (detail::is_surrogate(code)) {
            const bool pair = code < 0xDC00 && next >= 0xDC00 && detail::is_surrogate(next);
            code = pair ? 0x10000 + ((code - 0xD800) << 10) + (next - 0xDC00) : detail::kReplacement;
            if (pair) ++i;
        }
        detail::append_utf8(out, code);
    }
    return out;
}
inline std::string utf8(const CXStringW& text) { return utf8(view(text)); } ///< the same
/// The same; null counts as empty.
inline std::string utf8(const wchar_t* text) { return utf8(WideTextArg(text).view()); }

/// The same for narrow text, which counts as text of the dictionary's code page (hostMultiByteToUnicode).
inline std::string utf8(const char* text) { return utf8(CXStringW(text)); }
inline std::string utf8(const CXString& text) { return utf8(text.GetData()); } ///< the same

/// @return UTF-8 text as wide text. Each byte that belongs to no character becomes U+FFFD.
inline std::wstring wide(std::string_view utf8_text) {
    std::wstring out;
    out.reserve(utf8_text.size());
    while (!utf8_text.empty()) {
        unsigned code = detail::take_utf8(utf8_text);
        if (code >= 0x10000) {
            code -= 0x10000;
            out += static_cast<wchar_t>(0xD800 + (code >> 10));
            code = 0xDC00 + (code & 0x3FF);
        }
        out += static_cast<wchar_t>(code);
    }
    return out;
}

} // namespace qz
