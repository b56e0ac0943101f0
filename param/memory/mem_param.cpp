#include "param/memory/mem_param.h"

#include "core/allocator.h"
#include "core/scope_exit.h"
#include "param/memory/packed_value.h"
#include "variant/record.h"

#include <utility>

namespace qzr {

namespace {

// The list, which is made when it is wanted for the first time.
NameList& wanted(CQZRef<NameList>& list) {
    if (!list) list = CQZRef<NameList>::Adopt(NameList::make());
    return *list;
}

} // namespace

// --- life ----------------------------------------------------------------------------------------------

CMemParam* CMemParam::make() noexcept {
    try {
        return new CMemParam;
    } catch (const CXMemException&) {
        return nullptr;
    }
}

unsigned CMemParam::InternalRelease() {
    if (--m_cRef != 0) return m_cRef;
    destroy(this);
    return 0;
}

// Children that die with their parent join the chain instead of being released one inside the other.
void CMemParam::destroy(CMemParam* dying) noexcept {
    while (dying != nullptr) {
        CMemParam* const node = dying;
        dying = node->next_dying_;
        node->DeleteAllValues();
        node->release_children(dying);
        delete node;
    }
}

void CMemParam::release_children(CMemParam*& dying) noexcept {
    if (!children_) return;
    NameSlots taken = children_->take_all();
    for (unsigned at = 0; at < taken.size(); ++at) {
        CMemParam* const child = taken[at].value.pointer<CMemParam>(); // null in an orphan
        if (child == nullptr || --child->m_cRef != 0) continue;
        child->next_dying_ = dying;
        dying = child;
    }
}

// --- children ------------------------------------------------------------------------------------------

CMemParam* CMemParam::find_child(unsigned hash) const noexcept {
    const NameEntry* const entry = children_ ? children_->find(hash) : nullptr;
    return entry != nullptr ? entry->value.pointer<CMemParam>() : nullptr;
}

CMemParam* CMemParam::add_child(const PathPart& name) {
    CQZRef<CMemParam> made = CQZRef<CMemParam>::Adopt(make());
    if (!made) return nullptr;
    wanted(children_).append(name.text(), name.hash).value = PackedValue::of_pointer(made.Get());
    return made.Detach();
}

CQZRef<CMemParam> CMemParam::create_path(const char* path, const char* stop) {
    CMemParam* node = this;
    for (PathPart part = first_part(path);; part = first_part(part.rest())) {
        const bool last = part.last() || part.end == stop;
        CMemParam* const found = node->find_child(part.hash);
        CMemParam* const child = found != nullptr ? found : node->add_child(part);
        if (last) {
            CQZRef<CMemParam> result = CQZRef<CMemParam>::Share(child);
            if (found != nullptr) child->Clear();
            return result;
        }
        if (child == nullptr) return nullptr;
        node = child;
    }
}

// When the first component of what is left of a path is missing, it is dropped and the rest is created where
// it was looked for: "a\b" makes b when there is no a. Stored settings rely on it.
CQZRef<CMemParam> CMemParam::open_path(const char* path, const char* stop, bool create) {
    CMemParam* node = this;
    for (PathPart part = first_part(path);; part = first_part(part.rest())) {
        const bool last = part.last() || part.end == stop;
        CMemParam* const child = node->find_child(part.hash);
        if (child == nullptr) {
            if (!create) return nullptr;
            return node->create_path(last ? part.begin : part.rest(), stop);
        }
        if (last) return CQZRef<CMemParam>::Share(child);
        node = child;
    }
}

IParam* CMemParam::CreateSubParam(const char* name) {
    return create_path(child_name(name), nullptr).Detach();
}

IParam* CMemParam::OpenSubParam(const char* name, int create) {
    return open_path(child_name(name), nullptr, create != 0).Detach();
}

void CMemParam::DeleteSubParam(const char* name) {
    if (!children_) return;
    const PathPart part = whole_name(child_name(name));
    PackedValue leaving;
    if (!children_->remove(part.hash, part.begin, leaving)) {
        children_->remove_orphan(part.begin);
        return;
    }
    const CQZRef<CMemParam> child = CQZRef<CMemParam>::Adopt(leaving.pointer<CMemParam>());
    child->Clear(); // for those who still hold it
}

void CMemParam::DeleteAllSubParams() {
    CMemParam* dying = nullptr;
    release_children(dying);
    destroy(dying);
}

CTEnum<const char*>* CMemParam::EnumSubParams() { return wanted(children_).enumerate(); }

// --- values --------------------------------------------------------------------------------------------

NameEntry* CMemParam::find_value(unsigned hash) const noexcept {
    return values_ ? values_->find(hash) : nullptr;
}

const NameEntry* CMemParam::value_at(const char* path) const {
    const CMemParam* node = this;
    PathPart part = first_part(value_name(path));
    for (; !part.last(); part = first_part(part.rest())) {
        node = node->find_child(part.hash);
        if (node == nullptr) return nullptr;
    }
    if (part.empty()) part = whole_name(value_name(nullptr));
    return node->find_value(part.hash);
}

int CMemParam::GetValue(const char* name, tagQZVARIANT* out) {
    const NameEntry* const entry = value_at(name);
    if (entry == nullptr) return 0;
    copy_out(entry->value, *out);
    return 1;
}

bool CMemParam::borrow_value(const char* name, tagQZVARIANT& value) const {
    const NameEntry* const entry = value_at(name);
    if (entry == nullptr) return false;
    value = borrowed(entry->value);
    return true;
}

void CMemParam::SetValue(const char* name, const tagQZVARIANT* value) {
    CQZRef<CMemParam> made; // keeps a node on the way that was just created
    CMemParam* node = this;
    PathPart part = first_part(value_name(name));
    while (!part.last()) {
        CMemParam* const child = node->find_child(part.hash);
        if (child != nullptr) {
            node = child;
            part = first_part(part.rest());
            continue;
        }
        const char* const stop = last_separator(part.begin);
        made = node->open_path(part.begin, stop, true);
        if (!made) throw CXMemException();
        node = made.Get();
        part = first_part(stop + 1);
    }
    if (part.empty()) part = whole_name(value_name(nullptr));
    node->store(part, *value);
}

// The copy is made first, so that afterwards nothing is left half done. What was there goes last: its object
// may call back.
void CMemParam::store(const PathPart& name, const tagQZVARIANT& value) {
    PackedValue packed = pack(value);
    ScopeExit undo([&] { drop(packed); });
    NameEntry* entry = find_value(name.hash);
    if (entry == nullptr) entry = &wanted(values_).append(name.text(), name.hash);
    undo.dismiss();
    std::swap(entry->value, packed);
    release(packed);
}

void CMemParam::DeleteValue(const char* name) {
    if (!values_) return;
    const PathPart part = whole_name(value_name(name));
    PackedValue leaving;
    if (values_->remove(part.hash, part.begin, leaving)) drop(leaving); // whose object may call back
}

void CMemParam::DeleteAllValues() {
    if (!values_) return;
    NameSlots taken = values_->take_all();
    for (unsigned at = 0; at < taken.size(); ++at)
        drop(taken[at].value);
}

CTEnum<const char*>* CMemParam::EnumValues() { return wanted(values_).enumerate(); }

void CMemParam::Clear() {
    DeleteAllValues();
    DeleteAllSubParams();
}

} // namespace qzr

IParam* new_MemParam() { return qzr::CMemParam::make(); }
