// What a sound module imports, for tests that look at import tables.
#pragma once

#include <map>

#include <windows.h>

namespace test {

// The slots of all import address tables of a module, with what they hold.
using ImportSlots = std::map<void**, void*>;
ImportSlots import_slots(HMODULE module);

unsigned image_size(HMODULE module);

} // namespace test
