// Whole files, read at once and replaced at once.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tool {

/// @param shown the file's name for messages. Fails when the file cannot be read or holds 2 GiB or more, the
/// limit of the library's streams.
std::string read_file(const std::filesystem::path& file, const std::string& shown);

/// Puts the bytes in the file's place: they are written to a new file beside it, flushed to the disk, and
/// that file is then given the name. Whatever fails, the file keeps what it had, and no other file is left.
void replace_file(const std::filesystem::path& file, std::string_view bytes, const std::string& shown);

/// @return the system's text for an errno value
std::string system_text(int error);

} // namespace tool
