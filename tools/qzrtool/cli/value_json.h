// Values as JSON.
#pragma once

#include "cli/json.h"
#include "qzvariant.h"

namespace tool {

// Writes the value as JSON: numbers and booleans as such, points, sizes and rectangles as arrays, bytes as a
// text of hexadecimal digits, objects as {"class", "size", "data"}; numbers that JSON lacks as texts.
void write_value(JsonWriter& json, const tagQZVARIANT& value);

} // namespace tool
