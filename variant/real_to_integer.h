// The only place where reals become integers. What the C++ language leaves undefined is defined here, as the
// processor does it: a NaN and a value out of range give the most negative integer.
#pragma once

#include <emmintrin.h>

namespace qzr {

// Cut toward zero; 0x80000000 when that does not fit.
inline int real_to_int(double d) { return _mm_cvttsd_si32(_mm_set_sd(d)); }

// Cut toward zero; 0x8000000000000000 when that does not fit.
inline long long real_to_int64(double d) { return _mm_cvttsd_si64(_mm_set_sd(d)); }

// To the nearest integer; a negative half goes toward zero (-2.5 gives -2). Stored coordinates rely on the
// very constants.
inline int round_to_int(double d) { return real_to_int(d >= 0 ? d + 0.5 : d - 0.4999999); }

} // namespace qzr
