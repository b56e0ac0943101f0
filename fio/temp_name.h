// Unique names of temporary files.
#pragma once

#include "core/windows_lean.h"
#include "fio/path_kind.h"

namespace qzr {

// Both return 0, or the error of the system, and path is then not to be used.

// The system's directory for temporary files, with a delimiter at its end.
DWORD temp_directory(wchar_t (&path)[kPathUnits]) noexcept;

// Creates an empty file with a name that nobody has yet. The system makes names of three letters of a
// prefix: "QZPxxxx.tmp".
DWORD make_temp_file(const wchar_t* directory, wchar_t (&path)[kPathUnits]) noexcept;

} // namespace qzr
