// The text form between trees and files.
#pragma once

#include "trees/tree.h"

#include <filesystem>
#include <string>

namespace tool {

/// As long as it lives the working directory is that of a file, so that the file's includes are found from
/// there.
class IncludeDirectory {
public:
    explicit IncludeDirectory(const std::filesystem::path& file);
    ~IncludeDirectory();
    IncludeDirectory(const IncludeDirectory&) = delete;
    IncludeDirectory& operator=(const IncludeDirectory&) = delete;

private:
    std::filesystem::path before_;
};

/// Reads a text with the library's reader. Includes are taken from the working directory.
CQZRef<IParam> tree_of_text(const std::string& text);

/// @param compact one line for each section, as the library writes files; otherwise one line for each value,
/// which the reader takes for the same
std::string text_of_tree(IParam& tree, bool compact);

/// @return the statement that stores a value under a name, in the library's words; empty when its type has no
/// text form
std::string value_statement(const CXString& name, const CQZVariant& value);

} // namespace tool
