// Narrow text that names something of the system: a file, a key, an element.
#pragma once

#include "qzstring.h"
#include "string/code_page.h"

namespace qzr {

// The text in the system's own code page. Other texts are in the page that a dictionary names, and a file
// would not be found any more once another dictionary is loaded. Throws CXMemException.
inline CXStringW system_text(const char* text) {
    constexpr unsigned kSystemPage = 0;
    CXStringW wide;
    narrow_to_wide(text, kSystemPage, wide);
    return wide;
}

} // namespace qzr
