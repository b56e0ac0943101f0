// String resources.
#pragma once

namespace qzr {

// Loads a string resource as the platform does: at most size - 1 units and a terminator. @return their
// number, 0 when the resource is missing or empty. All strings that load themselves come through here.
int load_string(void* module, unsigned id, char* buffer, int size);
int load_string(void* module, unsigned id, wchar_t* buffer, int size);

// How they do it: as long as Library::string_loaders names none of these, by the system's loaders. A loader
// may leave a text without its terminator, and may answer more than it copied.
struct StringLoaders {
    int (*narrow)(void* module, unsigned id, char* buffer, int size);
    int (*wide)(void* module, unsigned id, wchar_t* buffer, int size);
};

} // namespace qzr
