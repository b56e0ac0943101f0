// What each stored form cannot hold: one table.
#pragma once

#include "qzvariant.h"

#include <string>

namespace tool {

/// Forms as bits, so that a row of the table can name several.
enum Form : unsigned {
    kTextForm = 1,
    kLiveForm = 2,
    kStreamForm = 4,
    kStorageForm = 8,
    kRegistryForm = 16,
};

/// @return why a form does not give back a value as it was, or null when the value alone is no reason
const char* why_lost(Form form, const tagQZVARIANT& value);

/// @return what a form cannot hold, for people
std::string what_is_lost(Form form);

} // namespace tool
