// Converting text between the widths, in one pass where it fits on the stack.
#pragma once

#include "qzstring.h"

namespace qzr {

// The conversion behind hostMultiByteToUnicode with the code page given (0: the system's ANSI code page). A
// text that cannot be converted gives the empty string.
void narrow_to_wide(const char* text, unsigned code_page, CXStringW& out);

// In the system's ANSI code page, what it lacks becoming its default character.
void wide_to_narrow(const wchar_t* text, CXString& out);

} // namespace qzr
