#include "string/format.h"

#include <cstdio>
#include <cwchar>

namespace qzr {

int measure_text(const char* format, std::va_list arguments) noexcept {
    return _vscprintf(format, arguments);
}

int measure_text(const wchar_t* format, std::va_list arguments) noexcept {
    return _vscwprintf(format, arguments);
}

// The runtime leaves out the terminator when the text fills the room exactly, and answers a number then too.
int print_text_v(char* out, std::size_t size, const char* format, std::va_list arguments) noexcept {
    const int length = _vsnprintf(out, size, format, arguments);
    out[size - 1] = 0;
    return length >= 0 && static_cast<std::size_t>(length) < size ? length : -1;
}

int print_text_v(wchar_t* out, std::size_t size, const wchar_t* format, std::va_list arguments) noexcept {
    const int length = _vsnwprintf(out, size, format, arguments);
    out[size - 1] = 0;
    return length >= 0 && static_cast<std::size_t>(length) < size ? length : -1;
}

int print_text(char* out, std::size_t size, const char* format, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, format);
    const int length = print_text_v(out, size, format, arguments);
    va_end(arguments);
    return length;
}

int print_text(wchar_t* out, std::size_t size, const wchar_t* format, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, format);
    const int length = print_text_v(out, size, format, arguments);
    va_end(arguments);
    return length;
}

bool scan_text(const char* text, const char* format, void* value) noexcept {
    return __ms_sscanf(text, format, value) == 1;
}

bool scan_text(const wchar_t* text, const wchar_t* format, void* value) noexcept {
    return __ms_swscanf(text, format, value) == 1;
}

} // namespace qzr
