// The parsers and formatters that the rows of the value text table name. See ValueTextRow for their contract.
#pragma once

#include "param/text/text_buffer.h"
#include "qzvariant.h"

#include <string_view>

namespace qzr {

bool parse_bool(std::string_view text, tagQZVARIANT& value);
bool parse_byte(std::string_view text, tagQZVARIANT& value);
bool parse_word(std::string_view text, tagQZVARIANT& value);
bool parse_unsigned_long(std::string_view text, tagQZVARIANT& value);
bool parse_int(std::string_view text, tagQZVARIANT& value);
bool parse_unsigned(std::string_view text, tagQZVARIANT& value);
bool parse_long(std::string_view text, tagQZVARIANT& value);
bool parse_double(std::string_view text, tagQZVARIANT& value);
bool parse_float(std::string_view text, tagQZVARIANT& value);

void format_bool(const tagQZVARIANT& value, TextBuffer& out);
void format_byte(const tagQZVARIANT& value, TextBuffer& out);
void format_word(const tagQZVARIANT& value, TextBuffer& out);
void format_unsigned_long(const tagQZVARIANT& value, TextBuffer& out);
void format_int(const tagQZVARIANT& value, TextBuffer& out);
void format_unsigned(const tagQZVARIANT& value, TextBuffer& out);
void format_long(const tagQZVARIANT& value, TextBuffer& out);
void format_double(const tagQZVARIANT& value, TextBuffer& out);
void format_float(const tagQZVARIANT& value, TextBuffer& out);

bool parse_size(std::string_view text, tagQZVARIANT& value);
bool parse_real_size(std::string_view text, tagQZVARIANT& value);
bool parse_point(std::string_view text, tagQZVARIANT& value);
bool parse_real_point(std::string_view text, tagQZVARIANT& value);
bool parse_rect(std::string_view text, tagQZVARIANT& value);
bool parse_real_rect(std::string_view text, tagQZVARIANT& value);

void format_size(const tagQZVARIANT& value, TextBuffer& out);
void format_real_size(const tagQZVARIANT& value, TextBuffer& out);
void format_point(const tagQZVARIANT& value, TextBuffer& out);
void format_real_point(const tagQZVARIANT& value, TextBuffer& out);
void format_rect(const tagQZVARIANT& value, TextBuffer& out);
void format_real_rect(const tagQZVARIANT& value, TextBuffer& out);

bool parse_empty(std::string_view text, tagQZVARIANT& value);
bool parse_text(std::string_view text, tagQZVARIANT& value);
bool parse_blob(std::string_view text, tagQZVARIANT& value);

void format_empty(const tagQZVARIANT& value, TextBuffer& out);
void format_text(const tagQZVARIANT& value, TextBuffer& out);
void format_wide_text(const tagQZVARIANT& value, TextBuffer& out);
void format_blob(const tagQZVARIANT& value, TextBuffer& out);

} // namespace qzr
