// Formatted printing and scanning by the platform's runtime: three exponent digits, "%s" of the wide
// functions takes wide text. The compiler's own layer, which differs in both, is never used. Everything
// depends on the process locale (the decimal point); number_text.h does not.
#pragma once

#include <cstdarg>
#include <cstddef>

namespace qzr {

// The length of what would be printed, or -1 when the runtime refuses.
int measure_text(const char* format, std::va_list arguments) noexcept;
int measure_text(const wchar_t* format, std::va_list arguments) noexcept;

// Prints into size units, always terminated (size is not 0). @return the length, or -1 when it does not fit,
// with the text cut, or when the runtime refuses
int print_text_v(char* out, std::size_t size, const char* format, std::va_list arguments) noexcept;
int print_text_v(wchar_t* out, std::size_t size, const wchar_t* format, std::va_list arguments) noexcept;

int print_text(char* out, std::size_t size, const char* format, ...) noexcept;
int print_text(wchar_t* out, std::size_t size, const wchar_t* format, ...) noexcept;

// Scans one value. @return whether there was one; *value is then set, else untouched
bool scan_text(const char* text, const char* format, void* value) noexcept;
bool scan_text(const wchar_t* text, const wchar_t* format, void* value) noexcept;

} // namespace qzr
