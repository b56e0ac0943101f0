#include "param/mem_param.h"

#include "core/allocator.h"
#include "variant/record.h"

#include <utility>

namespace qzr {

namespace {

// The list, which is made when it is wanted for the first time.
template <class Entry>
NameList& wanted(CQZRef<NameList>& list) {
    if (!list) list = CQZRef<NameList>::Adopt(NameList::make(sizeof(Entry)));
    return *list;
}

// An object that throws while it is released does not keep the others from being released.
void drop(tagQZVARIANT& value) {
    if (owns_something(value)) CQZVariant().Attach(value);
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
    const CQZRef<NameList> list = children_;
    for (NameEntry* entry = list->take_all(); entry != nullptr;) {
        NameEntry* const left = std::exchange(entry, entry->following());
        CMemParam* const child = std::exchange(static_cast<ChildEntry*>(left)->child, nullptr);
        list->discard(left);
        if (child == nullptr || --child->m_cRef != 0) continue;
        child->next_dying_ = dying;
        dying = child;
    }
}

// --- children ------------------------------------------------------------------------------------------

CMemParam::ChildEntry* CMemParam::find_child(unsigned hash) const noexcept {
    return children_ ? static_cast<ChildEntry*>(children_->find(hash)) : nullptr;
}

CMemParam* CMemParam::add_child(const PathPart& name) {
    CQZRef<CMemParam> made = CQZRef<CMemParam>::Adopt(make());
    if (!made) return nullptr;
    auto* const entry = wanted<ChildEntry>(children_).append<ChildEntry>(name.text(), name.hash);
    return entry->child = made.Detach();
}

CQZRef<CMemParam> CMemParam::create_path(const char* path, const char* stop) {
    CMemParam* node = this;
    for (PathPart part = first_part(path);; part = first_part(part.rest())) {
        const bool last = part.last() || part.end == stop;
        const ChildEntry* const entry = node->find_child(part.hash);
        CMemParam* const child = entry != nullptr ? entry->child : node->add_child(part);
        if (last) {
            CQZRef<CMemParam> result = CQZRef<CMemParam>::Share(child);
            if (entry != nullptr) child->Clear();
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
        const ChildEntry* const entry = node->find_child(part.hash);
        if (entry == nullptr) {
            if (!create) return nullptr;
            return node->create_path(last ? part.begin : part.rest(), stop);
        }
        if (last) return CQZRef<CMemParam>::Share(entry->child);
        node = entry->child;
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
    const CQZRef<NameList> list = children_;
    const PathPart part = whole_name(child_name(name));
    ChildEntry* const entry = find_child(part.hash);
    if (entry == nullptr) {
        list->discard(list->remove_orphan(part.begin));
        return;
    }
    NameEntry* const leaving = list->remove(entry, part.begin);
    const CQZRef<CMemParam> child = CQZRef<CMemParam>::Adopt(std::exchange(entry->child, nullptr));
    list->discard(leaving);
    child->Clear(); // for those who still hold it
}

void CMemParam::DeleteAllSubParams() {
    CMemParam* dying = nullptr;
    release_children(dying);
    destroy(dying);
}

CTEnum<const char*>* CMemParam::EnumSubParams() { return wanted<ChildEntry>(children_).enumerate(); }

// --- values --------------------------------------------------------------------------------------------

CMemParam::ValueEntry* CMemParam::find_value(unsigned hash) const noexcept {
    return values_ ? static_cast<ValueEntry*>(values_->find(hash)) : nullptr;
}

int CMemParam::GetValue(const char* name, tagQZVARIANT* out) {
    const CMemParam* node = this;
    PathPart part = first_part(value_name(name));
    for (; !part.last(); part = first_part(part.rest())) {
        const ChildEntry* const entry = node->find_child(part.hash);
        if (entry == nullptr) return 0;
        node = entry->child;
    }
    if (part.empty()) part = whole_name(value_name(nullptr));
    const ValueEntry* const entry = node->find_value(part.hash);
    if (entry == nullptr) return 0;
    QZVariantCopy(out, &entry->value);
    return 1;
}

void CMemParam::SetValue(const char* name, const tagQZVARIANT* value) {
    CQZRef<CMemParam> made; // keeps a node on the way that was just created
    CMemParam* node = this;
    PathPart part = first_part(value_name(name));
    while (!part.last()) {
        const ChildEntry* const entry = node->find_child(part.hash);
        if (entry != nullptr) {
            node = entry->child;
            part = first_part(part.rest());
            continue;
        }
        const char* const stop = last_separator(part.begin);
        made = node->open_path(part.begin, stop, true);
        if (!made) return;
        node = made.Get();
        part = first_part(stop + 1);
    }
    if (part.empty()) part = whole_name(value_name(nullptr));
    node->store(part, *value);
}

void CMemParam::store(const PathPart& name, const tagQZVARIANT& value) {
    CQZVariant copy(value); // made first: afterwards nothing is left half done
    ValueEntry* entry = find_value(name.hash);
    if (entry == nullptr) entry = wanted<ValueEntry>(values_).append<ValueEntry>(name.text(), name.hash);
    replace_value(entry->value, copy.Detach());
}

void CMemParam::DeleteValue(const char* name) {
    const PathPart part = whole_name(value_name(name));
    ValueEntry* const entry = find_value(part.hash);
    if (entry == nullptr) return;
    const CQZRef<NameList> list = values_;
    NameEntry* const leaving = list->remove(entry, part.begin);
    CQZVariant old; // goes last: its object may call back
    old.Attach(entry->value);
    list->discard(leaving);
}

void CMemParam::DeleteAllValues() {
    if (!values_) return;
    const CQZRef<NameList> list = values_;
    for (NameEntry* entry = list->take_all(); entry != nullptr;) {
        NameEntry* const left = std::exchange(entry, entry->following());
        drop(static_cast<ValueEntry*>(left)->value);
        list->discard(left);
    }
}

CTEnum<const char*>* CMemParam::EnumValues() { return wanted<ValueEntry>(values_).enumerate(); }

void CMemParam::Clear() {
    DeleteAllValues();
    DeleteAllSubParams();
}

} // namespace qzr

IParam* new_MemParam() { return qzr::CMemParam::make(); }
