// Scanning text in blocks of 16 bytes, or lines of 64. Lengths and ends are in units; a block is read only
// when it lies within the given bounds or, for a text without a known end, within the aligned line of a byte
// known to exist.
#pragma once

#include <cstddef>

namespace qzr {

// Units before the terminating zero.
std::size_t text_length(const char* text) noexcept;
std::size_t text_length(const wchar_t* text) noexcept;

// The same, and 0 for null.
template <class Unit>
std::size_t length_or_0(const Unit* text) noexcept {
    return text != nullptr ? text_length(text) : 0;
}

// As the first, looking at `limit` units at most.
std::size_t text_length(const char* text, std::size_t limit) noexcept;
std::size_t text_length(const wchar_t* text, std::size_t limit) noexcept;

// The length, and whether all units are ASCII: one pass for what many operations want to know first.
struct MeasuredText {
    std::size_t length;
    bool ascii;
};
MeasuredText measure_text(const char* text) noexcept;
MeasuredText measure_text(const wchar_t* text) noexcept;

// The first occurrence in [begin, end), or null.
const char* find_byte(const char* begin, const char* end, char c) noexcept;
const wchar_t* find_unit(const wchar_t* begin, const wchar_t* end, wchar_t c) noexcept;

// The last occurrence in [begin, end), or null.
const char* find_last_byte(const char* begin, const char* end, char c) noexcept;
const wchar_t* find_last_unit(const wchar_t* begin, const wchar_t* end, wchar_t c) noexcept;

// The first occurrence of n units of text, compared as they are, or null. n = 0 is found at begin.
const char* find_text(const char* begin, const char* end, const char* text, std::size_t n) noexcept;
const wchar_t* find_text(const wchar_t* begin, const wchar_t* end, const wchar_t* text,
                         std::size_t n) noexcept;

// The first unit at or above 0x80, or end.
const char* skip_ascii(const char* begin, const char* end) noexcept;
const wchar_t* skip_ascii(const wchar_t* begin, const wchar_t* end) noexcept;

// Units that a and b have in common at their start, of n at most.
std::size_t common_prefix(const char* a, const char* b, std::size_t n) noexcept;
std::size_t common_prefix(const wchar_t* a, const wchar_t* b, std::size_t n) noexcept;

} // namespace qzr
