// Reading the pairs of a dictionary file.
#pragma once

#include "qzfile.h"
#include "string/multibyte.h"

namespace qzr {

// The longest piece of a line that is read at once; the rest counts as a line of its own.
inline constexpr int kMostLineBytes = 8192;

class DictionaryReader {
public:
    explicit DictionaryReader(IXFile& file) : file_(file), size_(file.GetSize()) {}
    DictionaryReader(const DictionaryReader&) = delete;
    DictionaryReader& operator=(const DictionaryReader&) = delete;

    // The next pair; false at the end. A source without a translation gets the one of the pair before it,
    // programs and files rely on that. Throws CXFileException.
    bool next();

    // The texts between the quotes; escapes stand as in the file until unescape().
    const char* source() const noexcept { return source_; }
    const char* translation() const noexcept { return translation_; }
    void unescape() noexcept;

private:
    using Text = char[kMostLineBytes + 2];

    bool read_line();
    bool read_entry(Text& entry);
    bool take_entry(Text& entry) const noexcept;

    IXFile& file_;
    const unsigned size_;
    const LeadBytes leads_ = lead_bytes();
    Text line_ = {};
    Text source_ = {};
    Text translation_ = {};
};

// Resolves the escapes of a dictionary's text in place: "\n", "\r" and "\t" become control characters, "\"
// before anything else stays, several count as one, and one at the end goes. Doing it twice does no harm.
void unescape_dictionary_text(char* text, const LeadBytes& leads) noexcept;

} // namespace qzr
