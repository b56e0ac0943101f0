// Format and FormatV of both classes.
#include "string/format.h"
#include "string/format_estimate.h"
#include "string/string_access.h"

#include <algorithm>

namespace qzr {
namespace {

// Small results are printed on the stack first and need one print only.
constexpr std::uint64_t kStackUnits = 512;

// A private block that is large enough is kept.
template <class Unit>
bool keeps_block(const Unit* text, std::uint64_t units) {
    return is_private(text) && units <= capacity_units(text);
}

template <class Unit>
std::uint64_t room_for(const Unit* text, std::uint64_t units) {
    return keeps_block(text, units) ? capacity_units(text) : units;
}

// Throws CXMemException before anything is measured or printed when the room alone is beyond reason.
void check_room(std::uint64_t units, std::size_t unit_size) {
    if (units > INT_MAX / unit_size - 2 * sizeof(TextBlock)) throw CXMemException();
}

template <class Unit>
Unit* print_new(const Unit* old, std::uint64_t estimate, const Unit* format, std::va_list arguments) {
    std::uint64_t room = room_for(old, estimate + 1);
    for (bool measured = false;; measured = true) {
        Unit* const fresh = new_text<Unit>(room);
        zero_rest(fresh, 0);
        if (print_text_v(fresh, static_cast<std::size_t>(room), format, arguments) >= 0 || measured)
            return fresh;
        block_free(header_of(fresh), block_size<Unit>(static_cast<std::size_t>(header_of(fresh)->capacity)));
        const int length = measure_text(format, arguments);
        room = room_for(old, std::max(estimate, static_cast<std::uint64_t>(std::max(length, 0))) + 1);
    }
}

// The arguments may point into the old text, so that lives until everything is printed.
template <class Unit>
void print(Unit*& text, const Unit* format, std::va_list arguments) {
    const std::uint64_t estimate = estimate_format(format, arguments);
    check_room(estimate, sizeof(Unit));
    if (estimate < kStackUnits) {
        Unit buffer[kStackUnits];
        const int printed = print_text_v(buffer, kStackUnits, format, arguments);
        if (printed >= 0) {
            const auto length = static_cast<std::size_t>(printed);
            const std::uint64_t room = std::max<std::uint64_t>(estimate, length) + 1;
            if (!keeps_block(text, room))
                return replace_text(text, new_text_copy<Unit>(buffer, length, room));
            copy_units<Unit>(text, buffer, length + 1);
            return;
        }
    }
    replace_text(text, print_new<Unit>(text, estimate, format, arguments));
}

} // namespace
} // namespace qzr

void CXString::FormatV(const char* format, char* arguments) {
    qzr::print<char>(m_pszData, format != nullptr ? format : "", arguments);
}

void CXString::Format(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    FormatV(format, arguments);
    va_end(arguments);
}

void CXStringW::FormatV(const wchar_t* format, char* arguments) {
    qzr::print<wchar_t>(m_pszData, format != nullptr ? format : L"", arguments);
}

void CXStringW::Format(const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    FormatV(format, arguments);
    va_end(arguments);
}
