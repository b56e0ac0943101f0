// Standard output and standard error, as UTF-8.
#pragma once

#include <string_view>

namespace tool {

enum class StandardStream { output, error };

// Writes at once: to a console as characters, to anything else as UTF-8. @return false when that failed
bool write_standard(StandardStream stream, std::string_view utf8_text);

// @return whether somebody is looking
bool is_console(StandardStream stream);

} // namespace tool
