#include "param/ini/ini_param.h"

#include "core/enum_snapshot.h"
#include "param/ini/ini_sections.h"
#include "param/param_path.h"
#include "param/system_text.h"
#include "param/text/value_text.h"
#include "param/tree_walk.h"
#include "qzfile.h"
#include "variant/text.h"

#include <cstring>
#include <set>
#include <stdexcept>
#include <utility>

namespace qzr {

namespace {

constexpr char kMark[] = "@"; // the key of the default value
constexpr char kEmptyText[] = "e";

bool has_key(ProfileNames keys, const char* key) {
    while (const char* const name = keys.next())
        if (std::strcmp(name, key) == 0) return true;
    return false;
}

// A path that was cut in two at its last "\".
struct CutPath {
    explicit CutPath(const char* path) {
        const char* const stop = last_separator(path);
        if (stop != nullptr) node.assign(path, stop);
        name = value_name(stop != nullptr ? stop + 1 : path);
        cut = stop != nullptr;
    }

    HeapText node;
    const char* name;
    bool cut;
};

} // namespace

// --- life ----------------------------------------------------------------------------------------------

CIniFileParam::CIniFileParam(const CXString& file) : file_(file), section_(kRootSection) {}

CIniFileParam::CIniFileParam(CIniFileParam& parent, const CXString& section)
    : parent_(CQZRef<CIniFileParam>::Share(&parent)), file_(parent.file_), section_(section) {}

// Parents that die with their last child follow it one by one, instead of each inside the other.
unsigned CIniFileParam::InternalRelease() {
    if (--m_cRef != 0) return m_cRef;
    CIniFileParam* dying = this;
    while (dying != nullptr) {
        CIniFileParam* const parent = dying->parent_.Detach();
        delete dying;
        dying = parent != nullptr && --parent->m_cRef == 0 ? parent : nullptr;
    }
    return 0;
}

// A list that was cut does not tell, nor an empty one: a line that begins with "=" hides those behind it. One
// that was refused would let the mark replace a default value.
void CIniFileParam::mark_unless_in(ProfileNames keys) const {
    if (keys.refused()) return;
    const Profile file = profile();
    Vector<char> text;
    const bool whole = !keys.cut() && !keys.empty();
    if (!whole && file.read(section_.GetData(), kMark, text) != 0) return;
    if (has_key(std::move(keys), kMark)) return;
    Fio_CreateDirectory(system_text(file_.FilePath().GetData()).GetData());
    file.write(section_.GetData(), kMark, kEmptyText);
}

// --- children ------------------------------------------------------------------------------------------

bool CIniFileParam::is_root() const { return std::strcmp(section_.GetData(), kRootSection) == 0; }

CXString CIniFileParam::child_section(const char* name) const {
    return is_root() ? section_ + name : section_ + "\\" + name;
}

CQZRef<CIniFileParam> CIniFileParam::create(const char* name) {
    auto node = CQZRef<CIniFileParam>::Adopt(new CIniFileParam(*this, child_section(child_name(name))));
    node->mark();
    return node;
}

CQZRef<CIniFileParam> CIniFileParam::open(const char* name) {
    const CXString section = child_section(child_name(name));
    ProfileNames keys = profile().keys(section.GetData());
    if (keys.empty()) return nullptr;
    auto node = CQZRef<CIniFileParam>::Adopt(new CIniFileParam(*this, section));
    node->mark_unless_in(std::move(keys));
    return node;
}

IParam* CIniFileParam::CreateSubParam(const char* name) { return create(name).Detach(); }

IParam* CIniFileParam::OpenSubParam(const char* name, int create_missing) {
    CQZRef<CIniFileParam> child = open(name);
    if (!child && create_missing != 0) child = create(name);
    return child.Detach();
}

// The empty name would be the root's own section.
void CIniFileParam::DeleteSubParam(const char* name) {
    if (is_root() && *child_name(name) == '\0') return;
    if (const CQZRef<CIniFileParam> child = open(name)) child->Clear();
}

// A list that was cut is asked for again as long as children go away.
void CIniFileParam::DeleteAllSubParams() {
    for (bool more = true; more;) {
        more = false;
        const bool cut = profile().sections().cut();
        const NameEnum names = enum_children(*this);
        while (const char* const name = next_name(names)) {
            const CQZRef<CIniFileParam> child = open(name);
            if (!child) continue;
            child->Clear();
            more = more || (cut && profile().keys(child->section_.GetData()).empty());
        }
    }
}

CTEnum<const char*>* CIniFileParam::EnumSubParams() {
    CQZRef<NameSnapshot<char>> children = NameSnapshot<char>::make();
    const SectionPlace place(section_.GetData());
    std::set<HeapText, std::less<>, HeapAllocator<HeapText>> listed;
    ProfileNames sections = profile().sections();
    while (const char* const section = sections.next()) {
        const std::string_view child = place.child_in(section);
        if (!child.empty() && listed.insert(folded(child)).second) children->add(HeapText(child).c_str());
    }
    return children.Detach();
}

// --- values --------------------------------------------------------------------------------------------

int CIniFileParam::read(const char* key, tagQZVARIANT& out) const {
    Vector<char> text;
    const unsigned size = profile().read(section_.GetData(), key, text);
    QZVariantClear(&out); // not before: the key may be its text
    return size != 0 && parse_value_text({text.data(), size}, out) ? 1 : 0;
}

void CIniFileParam::store(const char* key, const tagQZVARIANT& value) const {
    try {
        TextBuffer text;
        if (append_value_text(value, text)) profile().write(section_.GetData(), key, text.c_str());
    } catch (const std::bad_alloc&) {
        throw CXMemException();
    } catch (const std::length_error&) {
        return; // much too long for the platform as well
    }
}

int CIniFileParam::GetValue(const char* name, tagQZVARIANT* out) {
    const CutPath path(value_name(name));
    if (!path.cut) return read(path.name, *out);
    const CQZRef<CIniFileParam> node = open(path.node.c_str());
    return node ? node->read(path.name, *out) : 0;
}

void CIniFileParam::SetValue(const char* name, const tagQZVARIANT* value) {
    const CutPath path(value_name(name));
    if (!path.cut) return store(path.name, *value);
    CQZRef<CIniFileParam> node = open(path.node.c_str());
    if (!node) node = create(path.node.c_str());
    node->store(path.name, *value);
}

void CIniFileParam::DeleteValue(const char* name) {
    profile().remove_key(section_.GetData(), value_name(name));
}

// Deleting a key takes its first line away, so that each line counts, and not each key. A list that was cut
// is asked for again as long as it changes: lines that do not go may stand at its head.
void CIniFileParam::DeleteAllValues() {
    ProfileNames lines = profile().lines(section_.GetData());
    for (bool more = true; more;) {
        while (const char* const line = lines.next())
            DeleteValue(HeapText(line, std::strcspn(line, "=")).c_str());
        if (!lines.cut()) break;
        ProfileNames left = profile().lines(section_.GetData());
        more = !left.same_as(lines);
        lines = std::move(left);
    }
    profile().write(section_.GetData(), kMark, kEmptyText);
}

CTEnum<const char*>* CIniFileParam::EnumValues() {
    CQZRef<NameSnapshot<char>> names = NameSnapshot<char>::make();
    ProfileNames keys = profile().keys(section_.GetData());
    while (const char* const key = keys.next())
        names->add(key);
    return names.Detach();
}

// Sections of others, whose names do not begin with "\", stay. A list that was cut is asked for again as long
// as sections go away. The node's own section goes in any case: it may stand behind the cut, or be listed
// with another spelling that only the platform takes for the same.
void CIniFileParam::Clear() {
    const SectionPlace place(section_.GetData());
    bool more = true;
    while (more) {
        more = false;
        ProfileNames sections = profile().sections();
        while (const char* const section = sections.next()) {
            if (!place.holds(section)) continue;
            profile().remove_section(section);
            more = more || (sections.cut() && profile().keys(section).empty());
        }
    }
    profile().remove_section(section_.GetData());
}

} // namespace qzr

extern "C" IParam* new_IParamIniFile(const wchar_t* fileName) {
    const CXString file = qzr::profile_name(qzr::or_empty(fileName));
    CQZRef<qzr::CIniFileParam> root;
    try {
        root = CQZRef<qzr::CIniFileParam>::Adopt(new qzr::CIniFileParam(file));
    } catch (const CXMemException&) {
        return nullptr;
    }
    root->mark();
    return root.Detach();
}
