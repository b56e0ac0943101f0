// qzrtool: shows, converts, compares and changes stored parameter trees. docs/qzrtool.md is its manual.
#include "cli/command_line.h"
#include "cli/diagnostics.h"
#include "commands/commands.h"

int wmain(int count, wchar_t** arguments) {
    try {
        return tool::run({arguments + 1, arguments + count}, tool::commands());
    } catch (...) {
        return tool::report_current_exception();
    }
}
