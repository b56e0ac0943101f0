#include "param/storage/stor_param.h"

#include "param/system_text.h"
#include "param/tree_walk.h"
#include "stream/ole_stream.h"
#include "stream/stg_error.h"

#include <string>
#include <utility>

namespace qzr {

namespace {

using StreamRef = CQZRef<IXStream>;
using NameText = std::basic_string<char, std::char_traits<char>, HeapAllocator<char>>;

// A value's path: the node's, which is empty for this node, and the name in that node.
struct ValuePath {
    explicit ValuePath(const char* path) : name(value_name(path)) {
        const char* const separator = last_separator(name);
        if (separator == nullptr) return;
        has_node = true;
        node = {name, static_cast<std::size_t>(separator - name)};
        name = value_name(separator + 1);
    }

    bool has_node = false;
    std::string_view node;
    const char* name;
};

} // namespace

// --- life ----------------------------------------------------------------------------------------------

CIXStorParam::CIXStorParam(CQZRef<IXStorage> storage, CIXStorParam* parent)
    : parent_(Node::Share(parent)), storage_(std::move(storage)) {
    interfaces().RegisterIface(typeid(IXStorage), storage_.Get());
}

// The storage goes before the parent. The loop keeps a chain of many levels from being released one inside
// the other.
unsigned CIXStorParam::InternalRelease() {
    if (--m_cRef != 0) return m_cRef;
    for (CIXStorParam* dying = this; dying != nullptr;) {
        CIXStorParam* const parent = dying->parent_.Detach();
        delete dying;
        dying = parent != nullptr && --parent->m_cRef == 0 ? parent : nullptr;
    }
    return 0;
}

// --- children ------------------------------------------------------------------------------------------

CIXStorParam::Node CIXStorParam::node_over(IXStorage* child) {
    auto storage = CQZRef<IXStorage>::Adopt(child);
    return storage ? Node::Adopt(new CIXStorParam(std::move(storage), this)) : Node();
}

CIXStorParam::Node CIXStorParam::create_child(const char* name) {
    return node_over(storage_->CreateStorage(name));
}

// Only a child that is missing is created: creating replaces what is there, so a child that fails to open for
// another reason would be lost.
CIXStorParam::Node CIXStorParam::open_child(const char* name, bool create) {
    Node child;
    try {
        child = node_over(storage_->OpenStorage(name));
    } catch (const CXFileException& e) {
        if (e.GetCode() != QZERR_NOT_FOUND) throw;
    }
    return child || !create ? child : create_child(name);
}

IParam* CIXStorParam::CreateSubParam(const char* name) {
    Node node = Node::Share(this);
    PathPart part = first_part(child_name(name));
    for (; !part.last(); part = first_part(part.rest())) {
        node = node->open_child(NameText(part.text()).c_str(), true);
        if (!node) return nullptr;
    }
    return node->create_child(part.begin).Detach();
}

// Of a path only the first node is created; the rest has to be there. Stored settings rely on it.
CIXStorParam::Node CIXStorParam::open_path(std::string_view path, bool create) {
    const NameText text(path);
    Node node = Node::Share(this);
    for (PathPart part = first_part(text.c_str());; part = first_part(part.rest())) {
        node = node->open_child(NameText(part.text()).c_str(), create);
        if (!node || part.last()) return node;
        create = false;
    }
}

IParam* CIXStorParam::OpenSubParam(const char* name, int create) {
    return open_path(child_name(name), create != 0).Detach();
}

// The emptied child stays, and opens.
void CIXStorParam::DeleteSubParam(const char* name) {
    if (const Node child = open_child(child_name(name), false)) child->Clear();
}

void CIXStorParam::DeleteAllSubParams() {
    const NameEnum names = enum_children(*this);
    while (const char* const name = next_name(names))
        DeleteSubParam(name);
}

CTEnum<const char*>* CIXStorParam::EnumSubParams() { return storage_->EnumStorages(); }

// --- values --------------------------------------------------------------------------------------------

int CIXStorParam::GetValue(const char* name, tagQZVARIANT* out) {
    try {
        const ValuePath path(name);
        const Node node = path.has_node ? open_path(path.node, false) : Node::Share(this);
        const auto stream = StreamRef::Adopt(node ? node->storage_->OpenStream(path.name) : nullptr);
        if (stream) return stream->ReadVariant(out);
    } catch (const CXException&) {
        // is no value
    }
    QZVariantClear(out); // not before: the name may be its text
    return 0;
}

void CIXStorParam::SetValue(const char* name, const tagQZVARIANT* value) {
    const ValuePath path(name);
    const Node node = path.has_node ? open_path(path.node, true) : Node::Share(this);
    if (node) node->write_value(path.name, *value);
}

void CIXStorParam::write_value(const char* name, const tagQZVARIANT& value) {
    if (const auto stream = StreamRef::Adopt(storage_->OpenStream(name))) {
        stream->WriteVariant(&value);
        cut_at_position(*stream); // what is left of a longer value
        return;
    }
    const auto stream = StreamRef::Adopt(storage_->CreateStream(name));
    if (!stream) throw CXFileException(QZERR_FORMAT, QZOP_OPEN, system_text(name).GetData());
    stream->WriteVariant(&value);
}

bool CIXStorParam::is_child(const char* name) {
    try {
        return static_cast<bool>(CQZRef<IXStorage>::Adopt(storage_->OpenStorage(name)));
    } catch (const CXFileException& e) {
        if (e.GetCode() == QZERR_MEMORY) throw; // which tells nothing about the name
        return e.GetCode() != QZERR_NOT_FOUND;
    }
}

// The platform removes whatever has the name; a child is no value.
void CIXStorParam::DeleteValue(const char* name) {
    const char* const element = value_name(name);
    if (!StreamRef::Adopt(storage_->OpenStream(element)) && is_child(element)) return;
    try {
        storage_->DestroyStream(element);
    } catch (const CXFileException& e) {
        if (e.GetCode() != QZERR_NOT_FOUND) throw;
    }
}

void CIXStorParam::DeleteAllValues() {
    const NameEnum names = enum_values(*this);
    while (const char* const name = next_name(names))
        DeleteValue(name);
}

CTEnum<const char*>* CIXStorParam::EnumValues() { return storage_->EnumStreams(); }

// --- both ----------------------------------------------------------------------------------------------

void CIXStorParam::Clear() {
    const NameEnum children = enum_children(*this);
    while (const char* const name = next_name(children))
        storage_->DestroyStorage(name);
    const NameEnum values = enum_values(*this);
    while (const char* const name = next_name(values))
        storage_->DestroyStream(name);
    check_storage(storage_->Commit(), QZOP_WRITE, storage_->GetName());
}

} // namespace qzr

IParam* new_IXStorParam(IXStorage* storage) {
    if (storage == nullptr) return nullptr;
    try {
        return new qzr::CIXStorParam(CQZRef<IXStorage>::Share(storage), nullptr);
    } catch (const CXMemException&) {
        return nullptr;
    }
}
