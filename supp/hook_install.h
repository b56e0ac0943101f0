// Putting the replaced functions in place.
#pragma once

#include "core/windows_lean.h"

namespace qzr {

// In one module. @return 1, also when the module imports none of the functions or its image is damaged; 0 for
// a null module. Throws CXMemException.
int install_hooks(HINSTANCE module);

// In the class-library modules that are loaded, by a fixed list of names. Throws CXMemException.
void install_default_hooks();

} // namespace qzr
