// Dictionaries of the tests: files in a directory of their own.
#pragma once

#include <filesystem>
#include <string>

// A directory that lives as long as this object.
class DictionaryFiles {
public:
    DictionaryFiles();
    ~DictionaryFiles();
    DictionaryFiles(const DictionaryFiles&) = delete;
    DictionaryFiles& operator=(const DictionaryFiles&) = delete;

    // Writes a file and returns its path.
    std::wstring write(const std::string& name, const std::string& content) const;

    // Writes a dictionary and an empty companion file, and adds it to the process's dictionary.
    int add(const std::string& content);

    const std::filesystem::path& directory() const { return directory_; }

private:
    std::filesystem::path directory_;
    int added_ = 0;
};

// The lines of a pair.
std::string pair_lines(const std::string& source, const std::string& translation);

// Runs a disabled test in a new process, in which no dictionary was loaded before, and expects it to pass.
// row is what fresh_row() answers there.
void expect_passes_alone(const std::string& test, int row = 0);
int fresh_row();
