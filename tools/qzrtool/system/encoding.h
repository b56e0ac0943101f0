// The three kinds of text in this program: CXString holds narrow text in the ANSI code page (names and texts
// of trees), std::wstring holds file names and arguments, std::string holds UTF-8 for the outside or raw
// bytes.
#pragma once

#include "qztext.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace tool {

using qz::utf8;

/// @return the text in the ANSI code page. Fails with a message when a character has no place there; what
/// names the text in that message.
CXString narrow(const std::wstring& text, const char* what);

/// @return the number of characters
std::size_t character_count(std::string_view utf8_text);

/// @return the first count characters
std::string_view first_characters(std::string_view utf8_text, std::size_t count);

/// @return the text with its control characters written as \n, \t, \x1B: what a stored name or text holds
/// must not steer the terminal
std::string printable(std::string_view utf8_text);

// @return the bytes as hexadecimal digits; null stands for zeroes
std::string hex_text(const void* bytes, std::size_t count);

// @return whether a list of words, parted by blanks, has one
bool has_word(std::string_view words, std::string_view word);

} // namespace tool
