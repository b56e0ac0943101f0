// Dictionaries of the tests: files in a directory of their own.
#pragma once

#include "support/scratch_folder.h"

#include <string>

class DictionaryFiles : public ScratchFolder {
public:
    // Writes a dictionary and an empty companion file, and adds it to the process's dictionary.
    int add(const std::string& content);

private:
    int added_ = 0;
};

// The lines of a pair.
std::string pair_lines(const std::string& source, const std::string& translation);
