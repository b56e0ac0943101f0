// A value as typed, for the functions that read it.
#pragma once

#include "trees/values.h"

#include <string>
#include <string_view>

namespace tool {

struct TypedValue {
    const ValueType& type;
    std::wstring wide; // what follows the colon
    std::string text;  // the same in UTF-8
};

// Fails: the text is no value of the type.
[[noreturn]] void refuse(const TypedValue& typed);

// @return the text without blanks and tabs at both ends
std::string_view without_blanks(std::string_view text);

CQZVariant parse_empty(const TypedValue& typed);
CQZVariant parse_bool(const TypedValue& typed);
CQZVariant parse_narrow(const TypedValue& typed);
CQZVariant parse_wide(const TypedValue& typed);
CQZVariant parse_blob(const TypedValue& typed);

} // namespace tool
