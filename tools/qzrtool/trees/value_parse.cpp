#include "trees/values.h"

#include "system/encoding.h"
#include "system/failure.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <type_traits>

namespace tool {

namespace {

/// What follows the colon, for the parsers: as typed, and in UTF-8.
struct Typed {
    const ValueType& type;
    std::wstring wide;
    std::string text;
};

[[noreturn]] void refuse(const Typed& typed) {
    fail("\"" + printable(typed.text) + "\" is no value of type " + typed.type.name + " (" +
         typed.type.written_as + ")");
}

std::string_view trimmed(std::string_view text) {
    const auto blank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && blank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && blank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

template <class Integer>
requires std::is_integral_v<Integer>
bool read_number(std::string_view text, Integer& out) {
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (hexadecimal) text.remove_prefix(2);
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, out, hexadecimal ? 16 : 10);
    return result.ec == std::errc() && result.ptr == end && !(hexadecimal && text.front() == '-');
}

template <class Real>
requires std::is_floating_point_v<Real>
bool read_number(std::string_view text, Real& out) {
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, out);
    return result.ec == std::errc() && result.ptr == end;
}

template <class Number, std::size_t Count>
std::array<Number, Count> read_numbers(const Typed& typed) {
    std::array<Number, Count> numbers = {};
    std::string_view rest = typed.text;
    for (std::size_t i = 0; i < Count; ++i) {
        const std::size_t comma = i + 1 < Count ? rest.find(',') : rest.size();
        if (comma == std::string_view::npos) refuse(typed);
        if (!read_number(trimmed(rest.substr(0, comma)), numbers[i])) refuse(typed);
        rest.remove_prefix(std::min(comma + 1, rest.size()));
    }
    return numbers;
}

template <class Number>
CQZVariant read_plain(const Typed& typed) {
    return CQZVariant(read_numbers<Number, 1>(typed)[0]);
}

/// Points, sizes and rectangles: records of so many equal numbers.
template <class Record, class Number>
CQZVariant read_record(const Typed& typed) {
    const auto numbers = read_numbers<Number, sizeof(Record) / sizeof(Number)>(typed);
    Record record;
    std::memcpy(&record, numbers.data(), sizeof record);
    return CQZVariant(record);
}

CQZVariant read_empty(const Typed& typed) {
    if (!typed.text.empty()) refuse(typed);
    return CQZVariant();
}

CQZVariant read_bool(const Typed& typed) {
    for (const char* yes : {"yes", "true", "1"}) {
        if (typed.text == yes) return CQZVariant(1, QZVT_BOOL);
    }
    for (const char* no : {"no", "false", "0"}) {
        if (typed.text == no) return CQZVariant(0, QZVT_BOOL);
    }
    refuse(typed);
}

CQZVariant read_blob(const Typed& typed) {
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

CQZVariant read_text(const Typed& typed) { return CQZVariant(narrow(typed.wide, "the text")); }
CQZVariant read_wide_text(const Typed& typed) { return CQZVariant(typed.wide.c_str()); }

CQZVariant read_typed(const Typed& typed) {
    switch (typed.type.code) {
    case QZVT_EMPTY:
        return read_empty(typed);
    case QZVT_BOOL:
        return read_bool(typed);
    case QZVT_UCHAR:
        return read_plain<unsigned char>(typed);
    case QZVT_USHORT:
        return read_plain<unsigned short>(typed);
    case QZVT_ULONG:
        return read_plain<unsigned long>(typed);
    case QZVT_INT:
        return read_plain<int>(typed);
    case QZVT_UINT:
        return read_plain<unsigned int>(typed);
    case QZVT_LONG:
        return read_plain<long>(typed);
    case QZVT_DOUBLE:
        return read_plain<double>(typed);
    case QZVT_FLOAT:
        return read_plain<float>(typed);
    case QZVT_TEXT:
        return read_text(typed);
    case QZVT_SIZE:
        return read_record<tagSIZE, long>(typed);
    case QZVT_RSIZE:
        return read_record<tagRSIZE, double>(typed);
    case QZVT_POINT:
        return read_record<tagPOINT, long>(typed);
    case QZVT_RPOINT:
        return read_record<tagRPOINT, double>(typed);
    case QZVT_RECT:
        return read_record<tagRECT, long>(typed);
    case QZVT_RRECT:
        return read_record<tagRRECT, double>(typed);
    case QZVT_BLOB:
        return read_blob(typed);
    case QZVT_WTEXT:
        return read_wide_text(typed);
    default:
        fail("a value of type object cannot be typed; an application stores it");
    }
}

const ValueType* type_named(const std::string& name) {
    if (name.size() == 1) return type_with_letter(name[0]);
    for (const ValueType& type : value_types()) {
        if (name == type.name) return &type;
    }
    return nullptr;
}

} // namespace

CQZVariant parse_value(const std::wstring& argument) {
    const std::size_t colon = argument.find(L':');
    if (colon == std::wstring::npos) {
        fail("\"" + printable(utf8(argument)) +
             "\" has no type: write TYPE:VALUE, such as int:5 or text:Hello");
    }
    const std::string name = utf8(argument.substr(0, colon));
    const ValueType* type = type_named(name);
    if (type == nullptr) fail("there is no type \"" + printable(name) + "\"; qzrtool help set lists them");
    const std::wstring value = argument.substr(colon + 1);
    return read_typed({*type, value, utf8(value)});
}

} // namespace tool
