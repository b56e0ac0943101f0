#include "param/param_path.h"

#include "core/name_hash.h"

namespace qzr {

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
