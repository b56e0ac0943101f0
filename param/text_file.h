// The files that "#include" opens. Nothing else of the text form knows how a file is read.
#pragma once

#include <string>
#include <string_view>

namespace qzr {

// The full path of a file named in a text. A name that begins with "." is taken from the directory of the
// file that names it; from is that file's full path, and empty for a text that comes from no file. Other
// names, and these in such a text, are the platform's to complete. Empty when the platform does not take the
// name.
std::wstring named_file(std::string_view name, const std::wstring& from);

// Tells whether two full paths are the same but for case.
bool same_file(const std::wstring& a, const std::wstring& b);

// Reads a whole file, sharing it with other readers. False, with content empty, when it cannot be opened or
// read, is no file on a disk, or holds 4 GiB or more. Throws std::bad_alloc.
bool read_text_file(const std::wstring& path, std::string& content);

} // namespace qzr
