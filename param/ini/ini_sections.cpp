#include "param/ini/ini_sections.h"

#include "string/multibyte.h"

namespace qzr {

namespace {

std::string_view first_component(std::string_view path) {
    const char* const end = mb_find(path.data(), path.data() + path.size(), '\\');
    return end != nullptr ? path.substr(0, static_cast<std::size_t>(end - path.data())) : path;
}

} // namespace

HeapText folded(std::string_view name) {
    HeapText text(name);
    const LeadBytes leads = lead_bytes();
    const char* const end = text.data() + text.size();
    for (char* p = text.data(); p != end; ++p) {
        if (leads(*p) && p + 1 != end)
            ++p;
        else if (*p >= 'A' && *p <= 'Z')
            *p = static_cast<char>(*p - 'A' + 'a');
    }
    return text;
}

SectionPlace::SectionPlace(std::string_view section)
    : root_(section == kRootSection), prefix_(folded(section)) {
    if (!root_) prefix_ += '\\';
}

bool SectionPlace::holds(std::string_view other) const {
    HeapText path = folded(other);
    path += '\\';
    return path.compare(0, prefix_.size(), prefix_) == 0;
}

std::string_view SectionPlace::child_in(std::string_view other) const {
    if (root_) return first_component(other.substr(other.substr(0, 1) == kRootSection ? 1 : 0));
    if (other.size() <= prefix_.size() || !holds(other)) return {};
    return first_component(other.substr(prefix_.size()));
}

} // namespace qzr
