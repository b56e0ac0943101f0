// Numbers as text, as the runtime prints them with "%d", "%u" and "%g". Integers and reals of plain size are
// printed here, the others by the runtime itself, so the text is always its text, the process's locale
// included.
#pragma once

#include <cstddef>

namespace qzr {

// Room for any number and its terminator.
inline constexpr std::size_t kNumberRoom = 64;

// @return the units written, the terminator not counted
std::size_t print_int(char* out, int value);
std::size_t print_int(wchar_t* out, int value);
std::size_t print_unsigned(char* out, unsigned value);
std::size_t print_unsigned(wchar_t* out, unsigned value);
std::size_t print_real(char* out, double value); // six significant digits
std::size_t print_real(wchar_t* out, double value);

} // namespace qzr
