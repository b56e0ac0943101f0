#include "cli/console.h"

#include "cli/diagnostics.h"
#include "qzexport.h" // keeps min and max out of the system header

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <io.h>

namespace tool {

namespace {

constexpr std::size_t kPiece = 64 * 1024;
constexpr std::size_t kConsolePiece = 8 * 1024; // older systems take no more at once

const char* color_code(Style style) {
    switch (style) {
    case Style::section:
        return "\x1B[1;34m";
    case Style::type:
        return "\x1B[2m";
    case Style::text:
        return "\x1B[32m";
    case Style::number:
        return "\x1B[36m";
    case Style::object:
        return "\x1B[35m";
    case Style::added:
        return "\x1B[32m";
    case Style::removed:
        return "\x1B[31m";
    case Style::changed:
        return "\x1B[33m";
    case Style::faint:
        return "\x1B[2m";
    case Style::plain:
        break;
    }
    return "";
}

HANDLE handle_of(StandardStream stream) {
    return GetStdHandle(stream == StandardStream::output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

bool is_console(HANDLE handle) {
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != 0;
}

/// Consoles take 16-bit characters, whatever code page they are set to.
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

bool is_set(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

bool wants_color(ColorChoice choice) {
    if (choice != ColorChoice::automatic) return choice == ColorChoice::always;
    if (is_set("NO_COLOR")) return false;
    return is_set("CLICOLOR_FORCE") || is_console(handle_of(StandardStream::output));
}

} // namespace

bool is_terminal(StandardStream stream) {
    return is_console(handle_of(stream)) || (stream == StandardStream::error && is_set("QZRTOOL_TERMINAL"));
}

bool write_standard(StandardStream stream, std::string_view utf8_text) {
    const HANDLE handle = handle_of(stream);
    if (utf8_text.empty()) return true;
    if (is_console(handle)) return write_to_console(handle, utf8_text);
    std::FILE* file = stream == StandardStream::output ? stdout : stderr;
    _setmode(_fileno(file), _O_BINARY); // lines end in a line feed everywhere
    const bool written = std::fwrite(utf8_text.data(), 1, utf8_text.size(), file) == utf8_text.size();
    return std::fflush(file) == 0 && written;
}

Output::Output(ColorChoice color) : colored_(wants_color(color)) {
    DWORD mode = 0;
    const HANDLE handle = handle_of(StandardStream::output);
    if (!colored_ || GetConsoleMode(handle, &mode) == 0) return;
    if (SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0) {
        console_mode_ = mode;
    } else {
        colored_ = false;
    }
}

Output::~Output() {
    if (console_mode_) SetConsoleMode(handle_of(StandardStream::output), static_cast<DWORD>(*console_mode_));
}

void Output::write(std::string_view text) {
    held_ += text;
    if (held_.size() >= kPiece) finish();
}

void Output::write(Style style, std::string_view text) {
    const bool paint = colored_ && style != Style::plain && !text.empty();
    if (paint) held_ += color_code(style);
    held_ += text;
    if (paint) held_ += "\x1B[0m";
    if (held_.size() >= kPiece) finish();
}

void Output::finish() {
    if (!write_standard(StandardStream::output, held_)) fail("standard output cannot be written");
    held_.clear();
}

} // namespace tool
