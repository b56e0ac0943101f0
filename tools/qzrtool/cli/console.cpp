#include "cli/console.h"

#include "qzexport.h" // keeps min and max out of the system header
#include "system/failure.h"
#include "system/standard_streams.h"

#include <windows.h>

#include <cstdlib>

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

HANDLE output_handle() { return GetStdHandle(STD_OUTPUT_HANDLE); }

bool is_set(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

bool wants_color(ColorChoice choice) {
    if (choice != ColorChoice::automatic) return choice == ColorChoice::always;
    if (is_set("NO_COLOR")) return false;
    return is_set("CLICOLOR_FORCE") || is_console(StandardStream::output);
}

} // namespace

Output::Output(ColorChoice color) : colored_(wants_color(color)) {
    DWORD mode = 0;
    const HANDLE handle = output_handle();
    if (!colored_ || GetConsoleMode(handle, &mode) == 0) return;
    if (SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0) {
        console_mode_ = mode;
    } else {
        colored_ = false;
    }
}

Output::~Output() {
    if (console_mode_) SetConsoleMode(output_handle(), static_cast<DWORD>(*console_mode_));
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
