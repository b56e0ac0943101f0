#include "console.h"

#include "diagnostics.h"
#include "qzexport.h" // keeps min and max out of the system header

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <io.h>

namespace tool {

namespace {

constexpr std::size_t kPiece = 64 * 1024;

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

bool is_console(DWORD which, DWORD& mode) { return GetConsoleMode(GetStdHandle(which), &mode) != 0; }

bool wants_color(ColorChoice choice) {
    if (choice != ColorChoice::automatic) return choice == ColorChoice::always;
    const char* no_color = std::getenv("NO_COLOR");
    if (no_color != nullptr && *no_color != '\0') return false;
    DWORD mode = 0;
    if (!is_console(STD_OUTPUT_HANDLE, mode)) return false;
    return SetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

} // namespace

void prepare_console() {
    DWORD mode = 0;
    if (is_console(STD_OUTPUT_HANDLE, mode) || is_console(STD_ERROR_HANDLE, mode))
        SetConsoleOutputCP(CP_UTF8);
    _setmode(_fileno(stdout), _O_BINARY);
}

Output::Output(ColorChoice color) : colored_(wants_color(color)) {}

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
    const bool written = std::fwrite(held_.data(), 1, held_.size(), stdout) == held_.size();
    if (!written || std::fflush(stdout) != 0) fail("standard output cannot be written");
    held_.clear();
}

} // namespace tool
