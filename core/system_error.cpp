#include "core/system_error.h"

namespace qzr {

DWORD last_error() noexcept { return GetLastError(); }

void throw_file_error(QZFileOperation operation, const wchar_t* name, DWORD error) {
    throw CXFileException(file_error_code(error), operation, name);
}

CXString system_message(DWORD error) {
    char text[260] = "";
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error,
                   MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), text, sizeof text, nullptr);
    return CXString(text);
}

} // namespace qzr
