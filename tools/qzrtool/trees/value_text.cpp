#include "trees/value_text.h"

#include "system/encoding.h"
#include "trees/values.h"

namespace tool {

namespace {

constexpr std::size_t kShownCharacters = 60;
constexpr std::size_t kShownBytes = 16;

std::string quoted(const std::string& text, bool full) {
    const std::size_t count = character_count(text);
    if (full || count <= kShownCharacters) return '"' + printable(text) + '"';
    return '"' + printable(first_characters(text, kShownCharacters)) + "...\" (" + std::to_string(count) +
           " characters)";
}

} // namespace

std::string no_text(const tagQZVARIANT&) { return {}; }

std::string bool_text(const tagQZVARIANT& value) {
    if (value.boolVal == 0) return "no";
    return value.boolVal == 1 ? "yes" : "yes (" + std::to_string(value.boolVal) + ")";
}

std::string narrow_text(const tagQZVARIANT& value) {
    return value.pszVal != nullptr ? utf8(value.pszVal) : std::string();
}

std::string wide_text(const tagQZVARIANT& value) {
    return value.pwszVal != nullptr ? utf8(std::wstring_view(value.pwszVal)) : std::string();
}

std::string blob_text(const tagQZVARIANT& value) {
    return hex_text(value.blobVal.pBlobData, value.blobVal.cbSize);
}

std::string object_text(const tagQZVARIANT& value) {
    if (value.pUnkVal == nullptr) return "none";
    const StoredObject stored = stored_object(value.pUnkVal);
    if (stored.class_name.empty()) return "an object that cannot be stored";
    return utf8(stored.class_name.c_str()) + ", " + std::to_string(stored.bytes.size()) + " bytes";
}

std::string narrow_shown(const tagQZVARIANT& value, bool full) { return quoted(narrow_text(value), full); }
std::string wide_shown(const tagQZVARIANT& value, bool full) { return quoted(wide_text(value), full); }

std::string blob_shown(const tagQZVARIANT& value, bool full) {
    const tagQZBLOB& blob = value.blobVal;
    if (blob.cbSize == 0) return "0 bytes";
    if (full || blob.cbSize <= kShownBytes) return blob_text(value);
    return hex_text(blob.pBlobData, kShownBytes) + "... (" + std::to_string(blob.cbSize) + " bytes)";
}

std::string object_shown(const tagQZVARIANT& value, bool) { return printable(object_text(value)); }

} // namespace tool
