// Paths of values and sections, as typed.
#pragma once

#include "trees/tree.h"

#include <string>
#include <vector>

namespace tool {

// Takes the path of a value or section apart. "\" separates names, and so does "/" in a path without any
// "\"; a separator at the end makes it the path of a section.
TreePath value_path(const std::wstring& argument);

// The same where only a section makes sense.
std::vector<CXString> section_path(const std::wstring& argument);

} // namespace tool
