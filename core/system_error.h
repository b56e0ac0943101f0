// Where errors of the system are read and turned into what callers get.
#pragma once

#include "core/file_error_code.h"
#include "qzstring.h"

namespace qzr {

// The thread's last error. Read it before anything else is called.
DWORD last_error() noexcept;

// Throws CXFileException with the code that belongs to a system error, by default the thread's last one. The
// name may be null.
[[noreturn]] void throw_file_error(QZFileOperation operation, const wchar_t* name,
                                   DWORD error = last_error());

// The system's text for an error, in the default language, at most 260 characters; empty when it has none.
// Where a failure is reported by a text it is thrown by value.
CXString system_message(DWORD error = last_error());

} // namespace qzr
