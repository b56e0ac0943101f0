// How the registry holds values: texts as texts, all others as bytes that begin with the type code.
// docs/registry-form.md has it byte by byte.
#pragma once

#include "param/registry/reg_key.h"
#include "qzvariant.h"

namespace qzr {

// Stores nothing of an object, or of an unknown type. Throws CXMemException.
void write_reg_value(const RegKey& key, const char* name, const tagQZVARIANT& value);

// False, with an empty value, when there is none or its data are not understood. The name may be the value's
// text. Throws CXMemException.
bool read_reg_value(const RegKey& key, const char* name, tagQZVARIANT& value);

} // namespace qzr
