#include "param/storage/stor_param.h"

#include "param/tree_walk.h"
#include "stream/doc_storage.h"
#include "stream/element_name.h"
#include "stream/ole_stream.h"
#include "stream/stg_error.h"
#include "stream/variant_codec.h"

#include <algorithm>
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

// A value as its stream holds it, made before anything stored is touched: an object may fail to save itself,
// and in a document each piece of it may be cancelled.
class Record {
public:
    Record(IXStorage& storage, const tagQZVARIANT& value) : made_(StreamRef::Adopt(new_StreamOnMemory())) {
        if (!made_) throw CXMemException();
        auto stream = made_;
        if (auto* const document = dynamic_cast<CIXDocStorage*>(&storage)) // which an object may ask for
            stream = StreamRef::Adopt(document->wrap(StreamRef(made_).Detach()));
        write_variant(*stream, value, WideTextCount::kWhole);
        block_ = CQZRef<IMemBlock>::Query(made_.Get());
    }

    void write_to(IXStream& stream) const { stream.Write(block_->GetData(), block_->GetSize()); }

    // Of a stream at its start. What fails or is cancelled leaves the old record or the new one, where the
    // stream is one of a storage: room is made behind the old record, and then one write changes it.
    void replace_in(IXStream& stream) const;

private:
    StreamRef made_;
    CQZRef<IMemBlock> block_;
};

void Record::replace_in(IXStream& stream) const {
    const auto below = storage_stream_below(stream);
    if (!below) return write_to(stream);
    const unsigned size = block_->GetSize(), before = below->GetSize();
    if (before < size) below->extend(block_->GetData(), before, size);
    try {
        stream.Write(block_->GetData(), std::min(before, size));
    } catch (const CXFileException&) {
        if (before < size) below->resize(before);
        throw;
    } catch (const CXException&) { // cancelled, when it was written
        below->resize(size);
        throw;
    }
    if (before > size) below->resize(size); // what is left of a longer value; nothing reads it if it stays
}

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

// The stored value is only touched when the new one is there as a whole.
void CIXStorParam::write_value(const char* name, const tagQZVARIANT& value) {
    const Record record(*storage_, value);
    if (const auto stream = StreamRef::Adopt(storage_->OpenStream(name))) {
        record.replace_in(*stream);
        return;
    }
    auto stream = StreamRef::Adopt(storage_->CreateStream(name));
    if (!stream) throw CXFileException(QZERR_FORMAT, QZOP_OPEN, WideElementName(name).text());
    try {
        record.write_to(*stream);
    } catch (const CXException& e) {
        stream.Reset();
        if (e.GetCode() != QZERR_CANCELLED) remove(name); // a cancelled one is written by then
        throw;
    }
}

// Removes what has the name, unless there is nothing that can be reached by it.
void CIXStorParam::remove(const char* name) {
    try {
        storage_->DestroyStream(name);
    } catch (const CXFileException& e) {
        if (e.GetCode() != QZERR_NOT_FOUND && e.GetCode() != QZERR_BAD_PATH) throw;
    }
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
    if (StreamRef::Adopt(storage_->OpenStream(element)) || !is_child(element)) remove(element);
}

void CIXStorParam::DeleteAllValues() {
    const NameEnum names = enum_values(*this);
    while (const char* const name = next_name(names))
        DeleteValue(name);
}

CTEnum<const char*>* CIXStorParam::EnumValues() { return storage_->EnumStreams(); }

// --- both ----------------------------------------------------------------------------------------------

// Elements whose names the code page lacks are listed under others, and stay.
void CIXStorParam::Clear() {
    for (const NameEnum& names : {enum_children(*this), enum_values(*this)})
        while (const char* const name = next_name(names))
            remove(name);
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
