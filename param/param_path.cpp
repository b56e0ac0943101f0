#include "param/param_path.h"

#include "core/name_hash.h"
#include "string/multibyte.h"

namespace qzr {

namespace {

constexpr char folded(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

} // namespace

PathPart first_part(const char* path) {
    const LeadBytes leads = lead_bytes();
    const bool double_bytes = leads.any();
    unsigned hash = 0;
    const char* end = path;
    for (; *end != '\0' && *end != '\\'; ++end) {
        if (double_bytes && leads(*end) && end[1] != '\0') hash = hash_step(hash, folded(*end++));
        hash = hash_step(hash, folded(*end));
    }
    return {path, end, hash};
}

const char* last_separator(const char* path) {
    const char* last = nullptr;
    for (PathPart part = first_part(path); !part.last(); part = first_part(part.rest()))
        last = part.end;
    return last;
}

PathPart whole_name(const char* name) {
    const std::string_view text = name;
    return {name, name + text.size(), hash_name_folded(text)};
}

} // namespace qzr
