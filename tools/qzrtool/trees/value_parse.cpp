#include "trees/typed_value.h"

#include "system/encoding.h"
#include "system/failure.h"

#include <charconv>

namespace tool {

namespace {

const ValueType* type_named(const std::string& name) {
    if (name.size() == 1) return type_with_letter(name[0]);
    for (const ValueType& type : value_types()) {
        if (name == type.name) return &type;
    }
    return nullptr;
}

} // namespace

void refuse(const TypedValue& typed) {
    fail("\"" + printable(typed.text) + "\" is no value of type " + typed.type.name + " (" +
         typed.type.written_as + ")");
}

std::string_view without_blanks(std::string_view text) {
    static constexpr std::string_view kBlanks = " \t";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

CQZVariant parse_empty(const TypedValue& typed) {
    if (!typed.text.empty()) refuse(typed);
    return CQZVariant();
}

CQZVariant parse_bool(const TypedValue& typed) {
    for (const char* yes : {"yes", "true", "1"}) {
        if (typed.text == yes) return CQZVariant(1, QZVT_BOOL);
    }
    for (const char* no : {"no", "false", "0"}) {
        if (typed.text == no) return CQZVariant(0, QZVT_BOOL);
    }
    refuse(typed);
}

CQZVariant parse_narrow(const TypedValue& typed) { return CQZVariant(narrow(typed.wide, "the text")); }
CQZVariant parse_wide(const TypedValue& typed) { return CQZVariant(typed.wide.c_str()); }

CQZVariant parse_blob(const TypedValue& typed) {
    std::string digits;
    for (const char c : typed.text) {
        if (c != ' ') digits += c;
    }
    if (digits.size() % 2 != 0) refuse(typed);
    QZBlob blob(static_cast<unsigned long>(digits.size() / 2));
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        unsigned char byte = 0;
        const char* pair = digits.data() + i;
        const auto result = std::from_chars(pair, pair + 2, byte, 16);
        if (result.ec != std::errc() || result.ptr != pair + 2) refuse(typed);
        static_cast<unsigned char*>(blob.pBlobData)[i / 2] = byte;
    }
    return CQZVariant(blob);
}

CQZVariant parse_value(const std::wstring& argument) {
    const std::size_t colon = argument.find(L':');
    if (colon == std::wstring::npos) {
        fail("\"" + printable(utf8(argument)) +
             "\" has no type: write TYPE:VALUE, such as int:5 or text:Hello");
    }
    const std::string name = utf8(argument.substr(0, colon));
    const ValueType* type = type_named(name);
    if (type == nullptr) fail("there is no type \"" + printable(name) + "\"; qzrtool help set lists them");
    if (type->parse == nullptr) fail("a value of type object cannot be typed; an application stores it");
    const std::wstring value = argument.substr(colon + 1);
    return type->parse({*type, value, utf8(value)});
}

} // namespace tool
