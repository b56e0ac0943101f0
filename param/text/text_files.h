// The files that "#include" opens. Nothing else of the text form knows how a file is read.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qzr {

// The full path of a file named in a text, which is in the system's code page. A name that begins with "." is
// taken from the directory of the file that names it; from is that file's full path, and empty for a text
// that comes from no file. Other names, and these in such a text, are the platform's to complete. Blocks of
// memory and URLs stay as they are. Empty when the platform does not take the name.
std::wstring named_file(std::string_view name, const std::wstring& from);

// The full path of a file that a caller named.
std::wstring full_path(const std::wstring& name);

// Tells whether two full paths are the same but for case.
bool same_file(const std::wstring& a, const std::wstring& b);

// An order of full paths in which those are equal.
struct FileOrder {
    bool operator()(const std::wstring& a, const std::wstring& b) const;
};

// A guess where nothing is known of a text's size.
constexpr std::size_t kUsualTextSize = 64 << 10;

// Reads a whole file. One of the size expected, or smaller, takes no more memory than that; any other is read
// as well. Throws CXFileException, CXException, CXMemException and std::bad_alloc.
std::string read_text_file(const std::wstring& path, std::size_t expected = kUsualTextSize);

// The same for a file that may be missing or refused: false, with content empty, then. Throws CXMemException
// and std::bad_alloc.
bool try_read_text_file(const std::wstring& path, std::size_t expected, std::string& content);

} // namespace qzr
