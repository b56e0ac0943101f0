// Remote files as the server lists them.
#pragma once

#include "core/windows_lean.h"

namespace qzr {

// Looks for the file of a URL in the listing of its directory. @return 0, ERROR_FILE_NOT_FOUND when the
// server lists none of that name, or another error of the system
DWORD find_remote(const wchar_t* url, WIN32_FIND_DATAW& found);

bool remote_exists(const wchar_t* url);

} // namespace qzr
