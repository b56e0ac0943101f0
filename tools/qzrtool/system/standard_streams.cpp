#include "system/standard_streams.h"

#include "qzexport.h" // keeps min and max out of the system header

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <string>

namespace tool {

namespace {

constexpr std::size_t kConsolePiece = 8 * 1024; // older systems take no more at once

HANDLE handle_of(StandardStream stream) {
    return GetStdHandle(stream == StandardStream::output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

bool is_console(HANDLE handle) {
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != 0;
}

// Consoles take 16-bit characters, whatever code page they are set to.
bool write_to_console(HANDLE console, std::string_view utf8_text) {
    const int size = static_cast<int>(utf8_text.size());
    std::wstring wide(utf8_text.size(), L'\0');
    wide.resize(static_cast<std::size_t>(
        MultiByteToWideChar(CP_UTF8, 0, utf8_text.data(), size, wide.data(), static_cast<int>(wide.size()))));
    for (std::size_t done = 0; done < wide.size();) {
        const DWORD piece = static_cast<DWORD>(std::min(wide.size() - done, kConsolePiece));
        DWORD written = 0;
        if (WriteConsoleW(console, wide.data() + done, piece, &written, nullptr) == 0 || written == 0)
            return false;
        done += written;
    }
    return true;
}

} // namespace

bool is_console(StandardStream stream) { return is_console(handle_of(stream)); }

bool write_standard(StandardStream stream, std::string_view utf8_text) {
    const HANDLE handle = handle_of(stream);
    if (utf8_text.empty()) return true;
    if (is_console(handle)) return write_to_console(handle, utf8_text);
    std::FILE* file = stream == StandardStream::output ? stdout : stderr;
    _setmode(_fileno(file), _O_BINARY); // lines end in a line feed everywhere
    const bool written = std::fwrite(utf8_text.data(), 1, utf8_text.size(), file) == utf8_text.size();
    return std::fflush(file) == 0 && written;
}

} // namespace tool
