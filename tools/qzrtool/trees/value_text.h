// How the types that are no numbers are written, for the table of types.
#pragma once

#include "qzvariant.h"

#include <string>

namespace tool {

std::string no_text(const tagQZVARIANT& value);
std::string bool_text(const tagQZVARIANT& value);
std::string narrow_text(const tagQZVARIANT& value);
std::string wide_text(const tagQZVARIANT& value);
std::string blob_text(const tagQZVARIANT& value);
std::string object_text(const tagQZVARIANT& value);

std::string narrow_shown(const tagQZVARIANT& value, bool full);
std::string wide_shown(const tagQZVARIANT& value, bool full);
std::string blob_shown(const tagQZVARIANT& value, bool full);
std::string object_shown(const tagQZVARIANT& value, bool full);

} // namespace tool
