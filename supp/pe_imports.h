// The import table of a module as it lies in memory.
#pragma once

#include "core/allocator.h"

namespace qzr {

// Collects the slots of a module's import address tables that hold a function: the places through which its
// calls of that function go, under whatever name and from whatever library it was imported.
//
// Every offset in the image is taken for hostile. @return false, and no slots, when the module is no sound
// 64-bit image in readable memory or imports nothing. Throws CXMemException.
bool find_import_slots(const void* module, const void* function, Vector<void**>& slots);

} // namespace qzr
