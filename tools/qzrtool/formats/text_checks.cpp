#include "formats/text_checks.h"

#include "qzvariant.h"
#include "system/encoding.h"
#include "trees/values.h"

#include <algorithm>

namespace tool {

namespace {

std::string shown(std::string_view bytes) {
    static constexpr std::size_t kLongest = 40;
    const std::string text = utf8(std::string(bytes).c_str());
    const bool whole = character_count(text) <= kLongest;
    return "\"" + printable(whole ? text : std::string(first_characters(text, kLongest)) + "...") + "\"";
}

bool all_of(std::string_view text, std::string_view allowed) {
    return text.find_first_not_of(allowed) == std::string_view::npos;
}

/// Whether everything in the text of a number can be part of it. The reader stops at the first character that
/// is not, and takes what it has.
bool looks_numeric(ValueClass value_class, std::string_view text) {
    static constexpr std::string_view kIntegers = "0123456789+-, \t";
    static constexpr std::string_view kHexadecimal = "0123456789abcdefABCDEFxX+-, \t";
    static constexpr std::string_view kReals = "0123456789+-.eE, \tinfatyINFATY";
    if (value_class == ValueClass::reals) return all_of(text, kReals);
    if (value_class != ValueClass::integers) return true;
    return all_of(text, text.find_first_of("xX") != text.npos ? kHexadecimal : kIntegers);
}

} // namespace

std::string why_not_taken(const NameAndValue& statement) {
    const std::string name = printable(utf8(std::string(statement.name).c_str()));
    if (statement.value.empty()) return name + " has no value; it begins with a type letter";
    const ValueType* type = type_with_letter(statement.value.front());
    if (type == nullptr) return name + " has the unknown type letter " + shown(statement.value.substr(0, 1));
    return name + ": " + shown(statement.value.substr(1)) + " is no value of type " + type->name;
}

std::string changed_in_reading(const NameAndValue& statement) {
    if (!statement.has_value || statement.value.empty()) return {};
    const ValueType* type = type_with_letter(statement.value.front());
    if (type == nullptr) return {};
    const std::string_view text = statement.value.substr(1);
    if (type->code == QZVT_UCHAR && text != "00") return "a byte (letter b) always reads as 0";
    if (type->code == QZVT_BLOB && !all_of(text, "0123456789abcdefABCDEF \t")) {
        return "characters that are no hexadecimal digits are skipped in " + shown(text);
    }
    if (!looks_numeric(type->value_class, text))
        return "only the beginning of " + shown(text) + " is read as a number";
    return {};
}

std::string cut_at_zero(std::string& text) {
    const std::size_t zero = text.find('\0');
    if (zero == std::string::npos) return {};
    const auto line = 1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(zero), '\n');
    text.resize(zero);
    return "nothing is read from the zero byte in line " + std::to_string(line) + " on; is it a text file?";
}

} // namespace tool
