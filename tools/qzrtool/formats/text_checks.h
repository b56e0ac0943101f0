// What to say of statements that the library's reader ignores, or takes otherwise than they look.
#pragma once

#include "formats/statements.h"

#include <string>

namespace tool {

/// Why the reader does not take a value, in words.
std::string why_not_taken(const NameAndValue& statement);

/// @return what the reader changes in a value that it takes, in words; empty when it takes the value as it is
std::string changed_in_reading(const NameAndValue& statement);

/// Ends the text at its first zero byte, as the reader's text does. @return a warning, empty when there was
/// none
std::string cut_at_zero(std::string& text);

} // namespace tool
