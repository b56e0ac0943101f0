// Dictionaries as gettext PO files, which editors for translators read and write. They are UTF-8.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// Texts are UTF-8, with escapes resolved.
struct PoEntry {
    unsigned line = 0; // of the file it was read from
    std::optional<std::string> context;
    std::string source;
    std::string translation;
    bool fuzzy = false;
};

struct PoFile {
    std::optional<unsigned> language; // the identifier that the dictionary names
    std::vector<PoEntry> entries;
};

std::string po_text(const PoFile& file);

/// Fails with file and line when the text is none. Obsolete entries are left out; of plural forms the first
/// is taken.
PoFile read_po(std::string_view text, const std::string& shown);

} // namespace tool
