// `qzrtool help`, written from the tables.
#include "command_line.h"
#include "encoding.h"
#include "values.h"

namespace tool {

namespace {

constexpr std::size_t kColumn = 28;

std::string row(const std::string& left, const std::string& right) {
    const std::size_t gap = left.size() + 2 < kColumn ? kColumn - left.size() - 2 : 1;
    return "  " + left + std::string(gap, ' ') + right + "\n";
}

std::string option_row(const Option& option) {
    const std::string value = option.value != nullptr ? std::string("=") + option.value : std::string();
    return row("--" + (option.name + value), option.summary);
}

std::string trees_text() {
    std::string text =
        "\nTrees are files, named as KIND:FILE or as FILE alone. Without a kind, the contents of a file "
        "that is\nthere tell it, and the extension of a file that is to be written.\n\n";
    for (const Kind* kind : kinds()) {
        text += row(kind->name + std::string(":FILE"),
                    kind->description + std::string(" (") + kind->extensions + ")");
    }
    return text + "\nA path such as View/Grid/Spacing names a value, View/Grid/ a section. Where a name "
                  "holds a slash, "
                  "write\nthe path with backslashes.\n";
}

std::string limits_text() {
    std::string text = "\nWhat kinds cannot hold:\n";
    for (const Kind* kind : kinds()) {
        text += row(kind->name, kind->cannot_hold);
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

std::string overview() {
    std::string text = "qzrtool shows, converts, compares and changes stored parameter trees.\n\n";
    for (const Command& command : commands()) {
        text += row(command.name + (" " + std::string(command.arguments)), command.summary);
    }
    text += row("--version", "prints the version");
    text += trees_text();
    text += "\nOptions of every command:\n";
    for (const Option& option : all_options()) {
        if (option.every_command) text += option_row(option);
    }
    return text + "\nExit codes: 0 done, equal; 1 different, not found, or not everything could be held; 2 "
                  "wrong use "
                  "or\nfailure; 3 warnings under --strict. qzrtool help COMMAND tells more.\n";
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

ExitCode run_help(Invocation& invocation) {
    if (invocation.arguments.empty()) {
        invocation.out.write(overview());
        return kOk;
    }
    const std::string name = utf8(invocation.arguments.front());
    for (const Command& command : commands()) {
        if (name != command.name) continue;
        invocation.out.write(page(command));
        return kOk;
    }
    fail("there is no command \"" + printable(name) + "\"");
}

} // namespace tool
