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

// Throws CXMemException before anything is measured or printed when the room alone is beyond reason.
void check_room(std::uint64_t units, std::size_t unit_size) {
    if (units > INT_MAX / unit_size - 2 * sizeof(TextBlock)) throw CXMemException();
}

// The arguments may point into the old text, so that lives until everything is printed. Whether a print was
// cut short is no question for the runtime, which may answer a small number then: what is not sure to fit is
// measured first.
template <class Unit>
void print(Unit*& text, const Unit* format, std::va_list arguments) {
    const FormatEstimate estimate = estimate_format(format, arguments);
    check_room(estimate.units, sizeof(Unit));
    std::uint64_t length = estimate.units;
    if (!estimate.certain)
        length = std::max(length, static_cast<std::uint64_t>(std::max(measure_text(format, arguments), 0)));
    if (length < kStackUnits) {
        Unit buffer[kStackUnits];
        const int printed = print_text_v(buffer, kStackUnits, format, arguments);
        if (printed >= 0) {
            const auto units = static_cast<std::size_t>(printed);
            length = std::max<std::uint64_t>(length, units); // a runtime that cannot measure may print
            if (!keeps_block(text, length + 1))
                return replace_text(text, new_text_copy<Unit>(buffer, units, length + 1));
            copy_units<Unit>(text, buffer, units + 1);
            return;
        }
    }
    Unit* fresh = new_text<Unit>(length + 1);
    zero_rest(fresh, 0);
    print_text_v(fresh, static_cast<std::size_t>(length) + 1, format, arguments);
    if (!keeps_block(text, length + 1)) return replace_text(text, fresh);
    copy_units<Unit>(text, fresh, static_cast<std::size_t>(length) + 1);
    release_text(fresh);
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
