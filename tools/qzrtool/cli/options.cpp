#include "cli/command_line.h"

#include <charconv>

namespace tool {

namespace {

bool set_number(unsigned& number, const std::string& value) {
    const char* end = value.data() + value.size();
    const auto result = std::from_chars(value.data(), end, number);
    return result.ec == std::errc() && result.ptr == end;
}

bool set_timeout(Options& options, const std::string& value) {
    return set_number(options.timeout, value) && options.timeout > 0;
}

bool set_depth(Options& options, const std::string& value) {
    const char* end = value.data() + value.size();
    const auto result = std::from_chars(value.data(), end, options.view.deepest);
    return result.ec == std::errc() && result.ptr == end && options.view.deepest > 0;
}

bool set_progress(Options& options, const std::string& value) {
    if (value == "auto")
        options.progress = ProgressChoice::automatic;
    else if (value == "always")
        options.progress = ProgressChoice::always;
    else if (value == "never")
        options.progress = ProgressChoice::never;
    else
        return false;
    return true;
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
     [](Options& o, const std::string&) { return o.salvage = true; }, false},
    {"json", nullptr, "print JSON", [](Options& o, const std::string&) { return o.json = true; }, false},
    {"full", nullptr, "show long texts and bytes whole",
     [](Options& o, const std::string&) { return o.view.full = true; }, false},
    {"ascii", nullptr, "draw lines with ASCII characters",
     [](Options& o, const std::string&) { return o.view.ascii = true; }, false},
    {"depth", "N", "show N levels of sections at most (64)", set_depth, false},
    {"color", "WHEN", "always, never, or auto: on a terminal or with CLICOLOR_FORCE, unless NO_COLOR is set",
     set_color, false},
    {"codepage", "N",
     "the code page of the dictionary; without it that of its language or contexts, or the system's",
     [](Options& o, const std::string& value) { return set_number(o.code_page, value); }, false},
    {"language", "N", "the locale identifier that a new dictionary names, as 1036 for French",
     [](Options& o, const std::string& value) { return set_number(o.language, value); }, false},
    {"plain", nullptr, "texts alone, each once, without contexts",
     [](Options& o, const std::string&) { return o.plain = true; }, false},
    {"progress", "WHEN", "show a bar always, never, or auto: on a terminal, when it takes long", set_progress,
     false},
    {"timeout", "SECONDS", "give up a server's listing of which nothing has come for so long (120)",
     set_timeout, false},
    {"yes", nullptr, "do it without asking", [](Options& o, const std::string&) { return o.yes = true; },
     false},
    {"compact", nullptr, "write one line for each section of a text file, instead of one for each value",
     [](Options& o, const std::string&) { return o.compact = true; }, false},
};

} // namespace

std::span<const Option> all_options() { return kOptions; }

} // namespace tool
