#include "commands/commands.h"

#include <cstddef>

namespace tool {

namespace {

constexpr std::size_t kAny = static_cast<std::size_t>(-1); // arguments

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
    {"storage ls", "FILE[!STORAGE]", "lists what a compound file holds, with the sizes of its streams",
     "Characters that a file name cannot have are shown as \"%\" and two hexadecimal digits; names are typed "
     "the same\nway.",
     1, 1, "json", run_storage_ls},
    {"storage cat", "FILE!STREAM", "writes the bytes of a stream to standard output", "", 1, 1, "progress",
     run_storage_cat},
    {"storage put", "FILE!STREAM SOURCE", "makes a file, or standard input (-), a stream of a compound file",
     "Missing storages are made, and the compound file too. It is replaced at once or not at all.", 2, 2,
     "progress", run_storage_put},
    {"storage rm", "FILE!PATH", "removes a stream, or, when the path ends in a separator, a storage",
     "The file is replaced at once or not at all. It does not become smaller.", 1, 1, "progress",
     run_storage_rm},
    {"storage pack", "FOLDER FILE", "makes a compound file of a folder",
     "The file is replaced at once or not at all.", 2, 2, "progress", run_storage_pack},
    {"storage extract", "FILE[!STORAGE] FOLDER", "makes a folder of what a compound file holds",
     "The folder appears when it is complete; nothing is written outside of it, whatever the names are. "
     "storage pack\nreads them back as they were.",
     2, 2, "progress", run_storage_extract},
    {"storage check", "FILE[!STORAGE]", "reads everything in a compound file and reports damage",
     "The exit code is 1 when there is any.", 1, 1, "progress", run_storage_check},
    {"file info", "PATH", "tells size, time, owner and writability", "", 1, 1, "json", run_file_info},
    {"file probe", "PATH", "tries how the file can be opened now", "", 1, 1, "", run_file_probe},
    {"file lock-test", "PATH", "takes locks on a file and shows what they do here and to another process",
     "All locks are given back; the file is not changed.", 1, 1, "", run_file_lock_test},
    {"file get", "ADDRESS PATH", "fetches a file from a server",
     "The local file is replaced when all of it has arrived.", 2, 2, "", run_file_get},
    {"file put", "PATH ADDRESS", "sends a file to a server, and makes its directory", "", 2, 2, "",
     run_file_put},
    {"file ls", "PLACE", "lists a directory here or on a server",
     "A listing that breaks off, or does not end, is not shown in parts.", 1, 1, "timeout", run_file_ls},
    {"file rm", "PLACE", "deletes a file here or on a server", "", 1, 1, "", run_file_rm},
    {"file mkdir", "PLACE", "makes a directory with those above it, here or on a server", "", 1, 1, "",
     run_file_mkdir},
    {"recover", "FOLDER [NAME]",
     "finds documents that an interrupted program left complete beside their place",
     "Asks for each whether it is to be put back, and under which name. With NAME and --yes it asks nothing, "
     "if there\nis just one. A file of that name is kept beside it.",
     1, 2, "yes", run_recover},
    {"wld check", "DICTIONARY...", "finds what is wrong with dictionaries",
     "Prints file, line and reason. The exit code is 1 when there was something.", 1, kAny,
     "codepage progress", run_wld_check},
    {"wld extract", "MODULE... DICTIONARY", "writes a new dictionary with the texts of modules",
     "Sources are the texts of string tables, menus and dialogs behind their contexts, translations the "
     "texts\nthemselves. The dictionary is in code page 1251, which has the letters that end a context.",
     2, kAny, "plain language codepage progress", run_wld_extract},
    {"wld missing", "DICTIONARY MODULE...", "lists the texts of modules that a dictionary lacks",
     "The exit code is 1 when there are some.", 2, kAny, "codepage progress", run_wld_missing},
    {"wld merge", "DICTIONARY DICTIONARY...", "adds to the first dictionary what the others have beyond it",
     "The first dictionary keeps its lines; new pairs follow them.", 2, kAny, "codepage progress",
     run_wld_merge},
    {"wld stats", "DICTIONARY", "counts what is in a dictionary", "", 1, 1, "codepage json", run_wld_stats},
    {"wld lookup", "DICTIONARY TEXT [CONTEXT]", "prints the translation of a text, as programs get it",
     "The letters that end a context may be left out. The exit code is 1 when there is no entry.", 2, 3, "",
     run_wld_lookup},
    {"wld export", "DICTIONARY PO", "writes a dictionary as a gettext PO file",
     "Texts that are not translated get an empty translation there.", 2, 2, "codepage", run_wld_export},
    {"wld import", "PO DICTIONARY", "writes a new dictionary from a gettext PO file",
     "Texts without translation get themselves.", 2, 2, "language codepage", run_wld_import},
    {"help", "[COMMAND]", "says how to use a command", "", 0, 2, "", run_help},
};

} // namespace

std::span<const Command> commands() { return kCommands; }

} // namespace tool
