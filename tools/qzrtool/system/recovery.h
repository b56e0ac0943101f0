// Temporary files that an interrupted commit left behind.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tool {

struct Leftover {
    enum State {
        complete,   // holds a whole document
        unfinished, // its program stopped while it still wrote
        empty,      // nothing was written, or an empty document
        copy,       // the beginning of another file of the folder: its program stopped while it copied that
        in_use,     // a program has it open
    };

    std::filesystem::path path;
    State state;
    unsigned long long size; // of the document
    bool marked;             // it still ends in the mark of its writing
    std::filesystem::file_time_type written;
};

/// Those in a folder, or the one file that is named, the latest first. Whether a named one is a copy is left
/// to its user. Fails when there is no such place.
std::vector<Leftover> find_leftovers(const std::filesystem::path& place, const std::string& shown);

/// Gives a leftover document the name of a target in one step. A file that has the name is kept.
/// @return where the file that had the name is now; empty when there was none
std::filesystem::path put_back(const Leftover& leftover, const std::filesystem::path& target,
                               const std::string& shown);

} // namespace tool
