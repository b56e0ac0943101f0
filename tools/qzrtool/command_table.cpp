#include "command_line.h"

#include <charconv>

namespace tool {

namespace {

constexpr Command kCommands[] = {
    {"show", "TREE [SECTION]", "draws a tree, or a section of it",
     "Each value is shown with its type. Long texts and bytes are shortened unless --full is given.", 1, 2,
     "ascii full depth json color salvage", run_show},
    {"convert", "SOURCE TARGET", "copies a tree into another file, possibly of another kind",
     "Entries that the target's kind cannot hold are named before it is written; the exit code is then 1, "
     "and under\n"
     "--strict nothing is written. The target is replaced at once or not at all.",
     2, 2, "compact salvage", run_convert},
    {"diff", "TREE TREE", "compares two trees",
     "Prints what was removed (-), added (+) and changed (~) from the first to the second. Values are equal "
     "when type\n"
     "and value are. The order of entries and the case of names do not matter.",
     2, 2, "full json color salvage", run_diff},
    {"get", "TREE PATH", "prints one value",
     "The value alone is printed, texts as they are, bytes as hexadecimal digits.", 2, 2, "json salvage",
     run_get},
    {"set", "TREE PATH TYPE:VALUE", "sets one value",
     "The file keeps its kind, and a text file its comments and layout. Missing sections are made.", 3, 3, "",
     run_set},
    {"rm", "TREE PATH", "removes a value, or, when the path ends in a separator, a section",
     "The file keeps its kind, and a text file its comments and layout.", 2, 2, "", run_rm},
    {"help", "[COMMAND]", "says how to use a command", "", 0, 1, "", run_help},
};

bool set_depth(Options& options, const std::string& value) {
    const char* end = value.data() + value.size();
    const auto result = std::from_chars(value.data(), end, options.view.deepest);
    return result.ec == std::errc() && result.ptr == end && options.view.deepest > 0;
}

bool set_color(Options& options, const std::string& value) {
    if (value == "auto")
        options.color = ColorChoice::automatic;
    else if (value == "always")
        options.color = ColorChoice::always;
    else if (value == "never")
        options.color = ColorChoice::never;
    else
        return false;
    return true;
}

constexpr Option kOptions[] = {
    {"strict", nullptr, "warnings end the command before anything is printed or written",
     [](Options& o, const std::string&) { return o.strict = true; }, true},
    {"salvage", nullptr, "of a damaged file, use what can be read",
     [](Options& o, const std::string&) { return o.load.salvage = true; }, false},
    {"json", nullptr, "print JSON", [](Options& o, const std::string&) { return o.json = true; }, false},
    {"full", nullptr, "show long texts and bytes whole",
     [](Options& o, const std::string&) { return o.view.full = true; }, false},
    {"ascii", nullptr, "draw lines with ASCII characters",
     [](Options& o, const std::string&) { return o.view.ascii = true; }, false},
    {"depth", "N", "show N levels of sections at most (64)", set_depth, false},
    {"color", "WHEN", "always, never, or auto: on a terminal or with CLICOLOR_FORCE, unless NO_COLOR is set",
     set_color, false},
    {"compact", nullptr, "write one line for each section of a text file, instead of one for each value",
     [](Options& o, const std::string&) { return o.save.compact = true; }, false},
};

} // namespace

std::span<const Command> commands() { return kCommands; }
std::span<const Option> all_options() { return kOptions; }

} // namespace tool
