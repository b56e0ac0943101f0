// The command line: commands, options, and how they are told apart. Each is a row of a table.
#pragma once

#include "cli/console.h"
#include "cli/diagnostics.h"
#include "cli/progress.h"
#include "cli/view.h"
#include "system/remote.h"

#include <span>
#include <string>
#include <vector>

namespace tool {

struct Options {
    bool strict = false;
    bool json = false;
    bool plain = false;     // texts without contexts
    unsigned code_page = 0; // of a dictionary; 0: its own
    unsigned language = 0;  // of a new dictionary; 0: none
    ColorChoice color = ColorChoice::automatic;
    ViewOptions view;
    bool salvage = false; // use what can be read of damaged data
    bool compact = false; // text files as the library writes them, without line breaks between values
    ProgressChoice progress = ProgressChoice::automatic;
    bool yes = false; // do without asking
    unsigned timeout = kListingTimeout;
};

struct Command;

/// What a command works on.
struct Invocation {
    std::span<const Command> commands;   // all there are
    std::vector<std::wstring> arguments; // without the command and the options
    Options options;
    Diagnostics& diagnostics;
    Output& out;
};

struct Command {
    const char* name;      // one word, or the word of a group and one of its own
    const char* arguments; // for people
    const char* summary;
    const char* details;
    std::size_t fewest, most; // arguments
    const char* options;      // names without dashes, parted by blanks, that it knows beside those all know
    ExitCode (*run)(Invocation& invocation);
};

struct Option {
    const char* name;  // without the dashes
    const char* value; // for people; null when it takes none
    const char* summary;
    /// @return false when the value is not understood
    bool (*set)(Options& options, const std::string& value);
    bool every_command;
};

/// @return whether a command is the one named, or belongs to the group of that name
bool is_named(const Command& command, std::string_view name);
std::span<const Option> all_options();

/// @return whether a command takes an option
bool takes(const Command& command, const Option& option);

// Does what the arguments say, with one of the commands. Throws what main reports.
ExitCode run(const std::vector<std::wstring>& arguments, std::span<const Command> commands);

} // namespace tool
