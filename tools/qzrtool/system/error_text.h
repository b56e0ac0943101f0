// The library's errors in words.
#pragma once

#include "qzexception.h"

#include <string>

namespace tool {

// @return what went wrong, without the name of the file
std::string error_text(const CXException& error);

// @return the file, what was done with it, and what went wrong
std::string file_error_text(const CXFileException& error);

} // namespace tool
