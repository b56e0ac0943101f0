// Dictionary files, read as the library reads them, with what it makes of each line.
#pragma once

#include "dictionary/wld_text.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// What a line is to the library. Lines longer than it reads at once count as several.
enum class WldLineKind { entry, comment, blank, skipped };

struct WldLine {
    unsigned number;
    WldLineKind kind;
    bool continues;         // the rest of a line that was too long
    bool has_zero;          // behind which nothing was read
    bool closed;            // an entry whose last character is a quote
    std::string_view text;  // without white space at both ends
    std::string_view entry; // of an entry, what lies between the quotes
};

/// Lines of a file; they point into its bytes.
std::vector<WldLine> wld_lines(std::string_view bytes, const CodePage& page);

/// A source and its translation. Raw texts stand as in the file, the others have their escapes resolved.
struct WldPair {
    unsigned line;             // of the source
    unsigned translation_line; // 0 when the file ends before it
    std::string_view raw_source, raw_translation;
    std::string source, translation;

    bool is_language() const { return raw_source == kLanguageKey; }
};

class WldFile {
public:
    /// Reads a file. Without a code page given it is that of the file's language; of a file that names none
    /// it is the one of contexts when it has some, or else the system's. Fails when the file cannot be read.
    WldFile(const std::wstring& argument, unsigned code_page);
    WldFile(const WldFile&) = delete;
    WldFile& operator=(const WldFile&) = delete;

    const std::filesystem::path& path() const { return path_; }
    const std::string& shown() const { return shown_; } // the name for messages
    const std::string& bytes() const { return bytes_; }
    const CodePage& page() const { return page_; }
    const std::vector<WldLine>& lines() const { return lines_; }
    const std::vector<WldPair>& pairs() const { return pairs_; }
    std::string place(unsigned line) const { return shown_ + ":" + std::to_string(line); }

    std::wstring source(const WldPair& pair) const { return page_.decode_anyway(pair.source); }
    std::wstring translation(const WldPair& pair) const { return page_.decode_anyway(pair.translation); }

private:
    std::filesystem::path path_;
    std::string shown_;
    std::string bytes_;
    CodePage page_;
    std::vector<WldLine> lines_;
    std::vector<WldPair> pairs_;
};

/// @return the last language identifier of a file; nothing when no pair names one
std::optional<unsigned> language_of(const std::vector<WldPair>& pairs);

/// Whether some source begins with a context, in the bytes of the page that has its letters.
bool has_contexts(const std::vector<WldPair>& pairs);

/// The two lines of a pair.
std::string wld_lines_of(std::string_view raw_source, std::string_view raw_translation);

} // namespace tool
