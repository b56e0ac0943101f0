// What plugin_late.cpp calls when the library has already shut down.
#pragma once

#include "qzunknown.h"

#include <windows.h>

struct LateCalls {
    int (*unregister)(const char*);
    int (*is_registered)(const char*);
    int (*register_by_path)(const char*, const char*);
    int (*register_by_module)(const char*, HINSTANCE);
    int (*create)(const char*, IQZUnknown*, const std::type_info&, IQZUnknown**);
};
