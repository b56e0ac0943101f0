// Types made of numbers: one, or several equal ones in a record.
#pragma once

#include "trees/typed_value.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

namespace tool {

// The shortest text that reads back as the same number.
template <class Number>
std::string number_text(Number number) {
    if constexpr (std::is_integral_v<Number>) {
        return std::to_string(number);
    } else {
        char buffer[64];
        return std::string(buffer, std::to_chars(buffer, buffer + sizeof buffer, number).ptr);
    }
}

template <class Number>
bool read_number(std::string_view text, Number& out) {
    const auto reads_whole = [&out](std::string_view digits, auto... format) {
        const char* end = digits.data() + digits.size();
        const auto result = std::from_chars(digits.data(), end, out, format...);
        return result.ec == std::errc() && result.ptr == end;
    };
    if constexpr (std::is_integral_v<Number>) {
        const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
        if (hexadecimal) text.remove_prefix(2);
        return !(hexadecimal && text.starts_with('-')) && reads_whole(text, hexadecimal ? 16 : 10);
    } else {
        return reads_whole(text);
    }
}

// What a row of the table of types says of a field of the record.
template <auto Field, class Number>
struct NumberType {
    using Value = std::remove_cvref_t<decltype(std::declval<tagQZVARIANT>().*Field)>;
    using Numbers = std::array<Number, sizeof(Value) / sizeof(Number)>;
    static_assert(sizeof(Numbers) == sizeof(Value));

    static std::string text(const tagQZVARIANT& value) {
        Numbers numbers;
        std::memcpy(numbers.data(), &(value.*Field), sizeof numbers);
        std::string text;
        for (const Number number : numbers) {
            if (!text.empty()) text += ',';
            text += number_text(number);
        }
        return text;
    }

    static CQZVariant parse(const TypedValue& typed) {
        Numbers numbers = {};
        std::string_view rest = typed.text;
        for (Number& number : numbers) {
            const bool last = &number == &numbers.back();
            const std::size_t comma = last ? rest.size() : rest.find(',');
            if (comma == rest.npos || !read_number(without_blanks(rest.substr(0, comma)), number))
                refuse(typed);
            rest.remove_prefix(std::min(comma + 1, rest.size()));
        }
        Value value;
        std::memcpy(&value, numbers.data(), sizeof value);
        return CQZVariant(value);
    }

    static bool same(const tagQZVARIANT& a, const tagQZVARIANT& b) {
        return std::memcmp(&(a.*Field), &(b.*Field), sizeof(Value)) == 0;
    }
};

} // namespace tool
