// Reads a text file as the library's reader does, but remembers where everything stands and says what is
// wrong with it. The library itself decides what is understood: each statement is given to it alone.
#pragma once

#include "formats/statements.h"
#include "system/diagnostics.h"
#include "trees/tree.h"

#include <deque>
#include <filesystem>
#include <string>
#include <vector>

namespace tool {

class TextScan {
public:
    struct File {
        std::filesystem::path path;
        std::string shown;
        std::string text;
    };

    struct Entry {
        unsigned file; // index; 0 is the file itself, the others are included
        Statement statement;
        std::vector<CXString> section; // the current section, of a section statement its own
        CXString name;                 // of a value that the reader takes; else empty
    };

    /// @param diagnostics told of what the reader ignores or changes; null to stay silent
    TextScan(const std::filesystem::path& path, const std::string& shown, std::string text,
             Diagnostics* diagnostics);

    const std::string& text() const { return files_.front().text; }
    const std::vector<Entry>& entries() const { return entries_; }
    const File& file_of(const Entry& entry) const { return files_[entry.file]; }

    /// @return the entry that gives a value its final state, or null
    const Entry* effective(const TreePath& path) const;

    /// @return whether a section is the outer one or lies in it
    bool is_within(const std::vector<CXString>& section, const std::vector<CXString>& outer) const;

private:
    void read_file_at(unsigned file, unsigned depth);
    void read_section(Entry& entry, std::string_view statement);
    void read_value(Entry& entry, std::string_view statement);
    void read_directive(const Entry& entry, std::string_view statement, unsigned depth);
    void include(const Entry& entry, const std::filesystem::path& path, unsigned depth);
    void warn_of_text(unsigned file);
    void warn_of_earlier(const Entry& entry, int earlier);
    void warn(const Entry& entry, const std::string& text);

    std::deque<File> files_; // a deque keeps the texts in place
    std::vector<unsigned> being_read_;
    std::vector<Entry> entries_;
    std::vector<CXString> section_;
    CQZRef<IParam> node_; // the current section in origin_; nothing before the first one
    // A tree of the same shape as the one that is read, in which each value is the index of the entry it came
    // from. So it is the library that decides which names are the same.
    CQZRef<IParam> origin_;
    Diagnostics* diagnostics_;
};

/// @return whether the library's reader takes a statement as a value
bool reader_takes(std::string_view statement);

} // namespace tool
