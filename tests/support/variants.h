// A value of every type, and values as texts that tests can spell out.
#pragma once

#include "qzvariant.h"

#include "support/counting_object.h"

#include <string>
#include <vector>

// One variant per type code, in the order of the codes:
// nothing, true, 200, 60000, 4000000000, -70000, 3000000000, -5, -2.5, 3.75, "7", (3,-4), (2.5,-2.5), (-7,8),
// (1.4,-1.6), (0,0,11,10), (0,0,9.6,9.4), the bytes 01 02 FF, the object, L"42".
std::vector<CQZVariant> one_of_each(CountingObject& object);

// The value by its type code: "-2.5", "3,-4", "'text'", "0102FF", "object", "null" ...
std::string show(const tagQZVARIANT& v);

// The same behind the type: "double -2.5", "size 3,-4", "text 'text'", "wide 'text'", "blob 0102FF", "empty"
// ...
std::string describe(const tagQZVARIANT& v);
