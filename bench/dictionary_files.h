// Dictionaries of the benchmarks: their files, and the libraries they are loaded into.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <windows.h>

namespace bench {

struct TextPair {
    std::string source;
    std::string translation; // most of them beyond ASCII
};

/// Texts as user interfaces have them, 14 to 40 characters; no two have the same hash, see names.h. Smaller
/// counts are the beginning of larger ones.
std::vector<TextPair> text_pairs(unsigned count);

/// A folder for the files of this run, which is removed at the end.
const std::filesystem::path& scratch_folder();

/// A dictionary of so many pairs, with its companion; written once.
const std::wstring& dictionary_file(unsigned pairs);

/// The same, written by another process: this one's peak of memory stays as it is.
std::wstring dictionary_file_from_aside(unsigned pairs);
void write_dictionary_file(unsigned pairs, const std::filesystem::path& path); ///< what that process does

/// Writes a dictionary, with an empty companion.
std::wstring write_dictionary(const std::string& name, const std::vector<TextPair>& pairs);

/// The library once more, as a copy of its file under another name. A dictionary never forgets, so each has
/// to have a library of its own.
class DictionaryLibrary {
public:
    explicit DictionaryLibrary(const std::string& name);
    ~DictionaryLibrary();
    DictionaryLibrary(const DictionaryLibrary&) = delete;
    DictionaryLibrary& operator=(const DictionaryLibrary&) = delete;

    int (*add)(const wchar_t* path);
    const wchar_t* (*translate)(const wchar_t* text);
    const wchar_t* (*translate_in_context)(const wchar_t* text, const wchar_t* context);
    int (*hook)(HINSTANCE module);

private:
    HMODULE module_;
};

} // namespace bench
