#include "cli/command_line.h"

#include "system/encoding.h"

#include <cstdio>

namespace tool {

namespace {

constexpr std::string_view kHelp = "help"; // the command that --help stands for

/// Arguments as typed, taken apart into words and options.
struct Typed {
    std::vector<std::wstring> words;
    std::vector<std::string> options;
};

Typed take_apart(const std::vector<std::wstring>& arguments) {
    Typed typed;
    bool options_end = false;
    for (const std::wstring& argument : arguments) {
        if (!options_end && argument == L"--") {
            options_end = true;
        } else if (!options_end && argument.starts_with(L"-") && argument.size() > 1) {
            typed.options.push_back(utf8(argument));
        } else {
            typed.words.push_back(argument);
        }
    }
    return typed;
}

/// Takes the name of the command, one word or two, off the front of the words.
const Command& take_command(std::span<const Command> commands, std::vector<std::wstring>& words) {
    const std::string first = utf8(words.front());
    std::string name = first;
    for (std::size_t count = 1; count <= 2 && count <= words.size(); ++count) {
        if (count == 2) name += " " + utf8(words[1]);
        for (const Command& command : commands) {
            if (name != command.name) continue;
            words.erase(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(count));
            return command;
        }
    }
    for (const Command& command : commands) {
        if (is_named(command, first))
            fail("which " + first + " command? qzrtool help " + first + " lists them");
    }
    fail("there is no command \"" + printable(first) + "\"; qzrtool help lists them");
}

void set_option(const Command& command, const std::string& typed, Options& options) {
    const std::size_t equals = typed.find('=');
    const bool has_value = equals != std::string::npos;
    const std::string name = typed.substr(0, equals);
    for (const Option& option : all_options()) {
        if (name != std::string("--") + option.name || !takes(command, option)) continue;
        if (has_value != (option.value != nullptr)) {
            fail(name + (has_value ? " takes no value"
                                   : std::string(" needs a value: ") + name + "=" + option.value));
        }
        const std::string value = has_value ? typed.substr(equals + 1) : std::string();
        if (!option.set(options, value)) fail(name + ": \"" + printable(value) + "\" is not understood");
        return;
    }
    fail("qzrtool " + std::string(command.name) + " has no option " + printable(name) +
         "; see qzrtool help " + command.name);
}

void check_count(const Command& command, std::size_t count) {
    if (count >= command.fewest && count <= command.most) return;
    fail("usage: qzrtool " + std::string(command.name) + " " + command.arguments);
}

} // namespace

bool is_named(const Command& command, std::string_view name) {
    const std::string_view own = command.name;
    return own == name || (own.starts_with(name) && own[name.size()] == ' ');
}

bool takes(const Command& command, const Option& option) {
    return option.every_command || has_word(command.options, option.name);
}

ExitCode run(const std::vector<std::wstring>& arguments, std::span<const Command> commands) {
    Typed typed = take_apart(arguments);
    for (const std::string& option : typed.options) {
        if (option == "--help" || option == "-h") typed.words.insert(typed.words.begin(), L"help");
        if (option == "--version") {
            Output out(ColorChoice::never);
            out.write("qzrtool " QZRTOOL_VERSION "\n");
            out.finish();
            return kOk;
        }
    }
    std::erase_if(typed.options,
                  [](const std::string& option) { return option == "--help" || option == "-h"; });
    if (typed.words.empty()) fail("which command? qzrtool help lists them");

    const Command& command = take_command(commands, typed.words);
    if (command.name == kHelp && typed.words.size() > 2) typed.words.resize(2);
    Options options;
    for (const std::string& option : typed.options) {
        set_option(command, option, options);
    }
    check_count(command, typed.words.size());

    PrintedDiagnostics diagnostics(options.strict);
    Output out(options.color);
    Invocation invocation = {commands, std::move(typed.words), options, diagnostics, out};
    const ExitCode code = command.run(invocation);
    out.finish();
    return code;
}

} // namespace tool
