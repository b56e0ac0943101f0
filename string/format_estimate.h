// How much room a formatting string asks for before anything is printed. Callers see it in GetAllocSize.
#pragma once

#include <cstdarg>
#include <cstdint>

namespace qzr {

// Units, terminator not counted. Reads the arguments that the format names. The estimate bounds nothing: the
// printed text may be longer.
std::uint64_t estimate_format(const char* format, std::va_list arguments) noexcept;
std::uint64_t estimate_format(const wchar_t* format, std::va_list arguments) noexcept;

} // namespace qzr
