// What "equal" means for each variant type; the rows of the type table name these functions. Both records are
// of the type in question.
#pragma once

#include "qzvariant.h"

namespace qzr {

bool equal_empty(const tagQZVARIANT& left, const tagQZVARIANT& right);
bool equal_8_bits(const tagQZVARIANT& left, const tagQZVARIANT& right);
bool equal_16_bits(const tagQZVARIANT& left, const tagQZVARIANT& right);
bool equal_32_bits(const tagQZVARIANT& left, const tagQZVARIANT& right);

// Neither is less: a NaN equals everything.
bool equal_double(const tagQZVARIANT& left, const tagQZVARIANT& right);
bool equal_float(const tagQZVARIANT& left, const tagQZVARIANT& right);

bool equal_text(const tagQZVARIANT& left, const tagQZVARIANT& right);
bool equal_wide_text(const tagQZVARIANT& left, const tagQZVARIANT& right);

bool equal_size(const tagQZVARIANT& left, const tagQZVARIANT& right);
bool equal_point(const tagQZVARIANT& left, const tagQZVARIANT& right);
bool equal_rect(const tagQZVARIANT& left, const tagQZVARIANT& right);
bool equal_real_size(const tagQZVARIANT& left, const tagQZVARIANT& right);
bool equal_real_point(const tagQZVARIANT& left, const tagQZVARIANT& right);
bool equal_real_rect(const tagQZVARIANT& left, const tagQZVARIANT& right);

bool equal_blob(const tagQZVARIANT& left, const tagQZVARIANT& right);
bool equal_object(const tagQZVARIANT& left, const tagQZVARIANT& right);

} // namespace qzr
