// Names of elements of compound files, written so that they are safe as file names and read back exactly.
//
// A name may have any characters: slashes, colons, control characters; it may be "..", that of a device, or
// empty. What a file system does not take is written as "%" and two hexadecimal digits, and so is "%"; a lone
// "%" is the empty name.
#pragma once

#include "qzstring.h"

#include <string>
#include <vector>

namespace tool {

using ElementNames = std::vector<CXString>;

/// @return the name as a file name on any system: never a separator, a device, or a step upwards
std::wstring file_name_of(const CXString& name);

/// @return the name behind such a text. Fails when it is none.
CXString element_name(const std::wstring& text);

/// @return the path for people and for the command line, parted by "/"
std::string element_text(const ElementNames& path);

struct ElementPath {
    ElementNames names;
    bool ends_in_separator;
};

/// Takes a path as typed apart; "/" and "\" part names.
ElementPath element_path(const std::wstring& text);

} // namespace tool
