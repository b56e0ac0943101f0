// The command line: commands, options, and how they are told apart. Each is a row of a table.
#pragma once

#include "cli/console.h"
#include "cli/diagnostics.h"
#include "cli/progress.h"
#include "cli/view.h"
#include "formats/kinds.h"

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
    LoadOptions load;
    SaveOptions save;
    ProgressChoice progress = ProgressChoice::automatic;
    bool yes = false; // do without asking
};

/// What a command works on.
struct Invocation {
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

std::span<const Command> commands();

/// @return whether a command is the one named, or belongs to the group of that name
bool is_named(const Command& command, std::string_view name);
std::span<const Option> all_options();

/// @return whether a command takes an option
bool takes(const Command& command, const Option& option);

/// Does what the arguments say. Throws what main reports.
ExitCode run(const std::vector<std::wstring>& arguments);

// The commands.
ExitCode run_show(Invocation& invocation);
ExitCode run_convert(Invocation& invocation);
ExitCode run_diff(Invocation& invocation);
ExitCode run_get(Invocation& invocation);
ExitCode run_set(Invocation& invocation);
ExitCode run_rm(Invocation& invocation);
ExitCode run_storage_ls(Invocation& invocation);
ExitCode run_storage_cat(Invocation& invocation);
ExitCode run_storage_check(Invocation& invocation);
ExitCode run_storage_put(Invocation& invocation);
ExitCode run_storage_rm(Invocation& invocation);
ExitCode run_storage_pack(Invocation& invocation);
ExitCode run_storage_extract(Invocation& invocation);
ExitCode run_file_info(Invocation& invocation);
ExitCode run_file_probe(Invocation& invocation);
ExitCode run_file_lock_test(Invocation& invocation);
ExitCode run_file_get(Invocation& invocation);
ExitCode run_file_put(Invocation& invocation);
ExitCode run_file_ls(Invocation& invocation);
ExitCode run_file_rm(Invocation& invocation);
ExitCode run_file_mkdir(Invocation& invocation);
ExitCode run_recover(Invocation& invocation);
ExitCode run_wld_check(Invocation& invocation);
ExitCode run_wld_extract(Invocation& invocation);
ExitCode run_wld_missing(Invocation& invocation);
ExitCode run_wld_merge(Invocation& invocation);
ExitCode run_wld_stats(Invocation& invocation);
ExitCode run_wld_lookup(Invocation& invocation);
ExitCode run_wld_export(Invocation& invocation);
ExitCode run_wld_import(Invocation& invocation);
ExitCode run_help(Invocation& invocation);

} // namespace tool
