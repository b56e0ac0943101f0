// `qzrtool help`, written from the tables.
#include "commands/commands.h"
#include "formats/kinds.h"
#include "formats/limits.h"
#include "system/encoding.h"
#include "trees/values.h"

namespace tool {

namespace {

constexpr std::size_t kColumn = 28;
constexpr std::size_t kWidth = 120;

/// Breaks a text at blanks and moves all lines but the first to the column.
std::string wrapped(std::string text) {
    constexpr std::size_t kRoom = kWidth - kColumn;
    for (std::size_t start = 0; text.size() - start > kRoom;) {
        const std::size_t blank = text.rfind(' ', start + kRoom);
        if (blank == text.npos || blank <= start) break;
        text.replace(blank, 1, "\n" + std::string(kColumn, ' '));
        start = blank + 1 + kColumn;
    }
    return text;
}

std::string row(const std::string& left, const std::string& right) {
    const bool fits = left.size() + 2 < kColumn;
    const std::string gap =
        fits ? std::string(kColumn - left.size() - 2, ' ') : "\n" + std::string(kColumn, ' ');
    return "  " + left + gap + wrapped(right) + "\n";
}

std::string command_row(const Command& command) {
    return row(command.name + (" " + std::string(command.arguments)), command.summary);
}

std::string option_row(const Option& option) {
    const std::string value = option.value != nullptr ? std::string("=") + option.value : std::string();
    return row("--" + (option.name + value), option.summary);
}

std::string trees_text() {
    std::string text =
        "\nTrees are named as KIND:FILE or as FILE alone. Without a kind, the contents of a file that is\n"
        "there tell it, and the extension of a file that is to be written. \"-\" is standard input or "
        "output.\n\n";
    for (const Kind* kind : kinds()) {
        const std::string extensions = kind->extensions;
        text += row(kind->name + std::string(":") + kind->argument,
                    kind->description + (extensions.empty() ? "" : " (" + extensions + ")"));
    }
    return text + "\nA path such as View/Grid/Spacing names a value, View/Grid/ a section. Where a name "
                  "holds a slash, "
                  "write\nthe path with backslashes.\n";
}

std::string limits_text() {
    std::string text = "\nWhat kinds cannot hold:\n";
    for (const Kind* kind : kinds()) {
        text += row(kind->name, what_is_lost(kind->form));
    }
    return text;
}

std::string types_text() {
    std::string text = "\nTypes, by name or by the letter of the text form:\n";
    for (const ValueType& type : value_types()) {
        if (type.written_as == nullptr) continue;
        const std::string letter = type.letter != '\0' ? std::string(1, type.letter) + ", " : std::string();
        text += row(letter + type.name, type.written_as);
    }
    return text;
}

std::string overview(std::span<const Command> commands) {
    std::string text = "qzrtool shows, converts, compares and changes stored parameter trees, looks into "
                       "compound files, and works on dictionaries.\n\n";
    for (const Command& command : commands) {
        text += command_row(command);
    }
    text += row("--version", "prints the version");
    text += trees_text();
    text += "\nOptions of every command:\n";
    for (const Option& option : all_options()) {
        if (option.every_command) text += option_row(option);
    }
    return text +
           "\nExit codes: 0 done, equal; 1 different, not found, or not everything could be held; 2 "
           "wrong use "
           "or\nfailure; 3 warnings under --strict; 4 ended by Ctrl-C. qzrtool help COMMAND tells more.\n";
}

std::string page(const Command& command) {
    std::string text = "qzrtool " + std::string(command.name) + " " + command.arguments + "\n\n";
    text += std::string(command.name) + " " + command.summary + ".\n";
    if (*command.details != '\0') text += command.details + std::string("\n");
    text += "\nOptions:\n";
    for (const Option& option : all_options()) {
        if (takes(command, option)) text += option_row(option);
    }
    if (command.run == run_convert) text += limits_text();
    if (command.run == run_set) text += types_text();
    return text;
}

} // namespace

// Behind a command's name its arguments may follow, as they do in front of --help.
ExitCode run_help(Invocation& invocation) {
    const auto& words = invocation.arguments;
    if (words.empty()) {
        invocation.out.write(overview(invocation.commands));
        return kOk;
    }
    const std::string first = utf8(words.front());
    const std::string both = words.size() > 1 ? first + " " + utf8(words[1]) : first;
    std::string text;
    for (const Command& command : invocation.commands) {
        if (command.name == both || command.name == first) {
            invocation.out.write(page(command));
            return kOk;
        }
        if (is_named(command, first)) text += command_row(command);
    }
    if (text.empty()) fail("there is no command \"" + printable(first) + "\"");
    invocation.out.write(text);
    return kOk;
}

} // namespace tool
