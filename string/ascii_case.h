// Case mapping and comparing of the ASCII part of a text, in blocks. Whatever lies beyond ASCII is the
// runtime's, in whose locale it depends.
#pragma once

#include <cstddef>

namespace qzr {

// Maps [begin, end) in place up to the first unit beyond ASCII. @return that unit, or end
char* ascii_upper(char* begin, char* end) noexcept;
char* ascii_lower(char* begin, char* end) noexcept;
wchar_t* ascii_upper(wchar_t* begin, wchar_t* end) noexcept;
wchar_t* ascii_lower(wchar_t* begin, wchar_t* end) noexcept;

// Units that a and b have in common at their start when ASCII letters are compared without case, of n at
// most. It ends at the first unit beyond ASCII.
std::size_t common_ascii_prefix(const char* a, const char* b, std::size_t n) noexcept;
std::size_t common_ascii_prefix(const wchar_t* a, const wchar_t* b, std::size_t n) noexcept;

} // namespace qzr
