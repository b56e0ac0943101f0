// How much room a formatting string asks for before anything is printed. Callers see it in GetAllocSize.
#pragma once

#include <cstdarg>
#include <cstdint>

namespace qzr {

struct FormatEstimate {
    std::uint64_t units; // terminator not counted
    bool certain;        // nothing longer is printed; otherwise only measuring tells
};

// Reads the arguments that the format names, each text in the width in which it will be printed.
FormatEstimate estimate_format(const char* format, std::va_list arguments) noexcept;
FormatEstimate estimate_format(const wchar_t* format, std::va_list arguments) noexcept;

} // namespace qzr
