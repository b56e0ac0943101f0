#include "param/tree_walk.h"

#include <utility>

namespace qzr {

namespace {

NameEnum require(CTEnum<const char*>* names) {
    if (names == nullptr) throw CXIFaceException(typeid(CTEnum<const char*>));
    return NameEnum::Adopt(names);
}

} // namespace

NameEnum enum_values(IParam& node) { return require(node.EnumValues()); }

NameEnum enum_children(IParam& node) { return require(node.EnumSubParams()); }

CQZRef<IParam> create_child(IParam& node, const char* name) {
    CQZRef<IParam> child = CQZRef<IParam>::Adopt(node.CreateSubParam(name));
    if (!child) throw CXMemException();
    return child;
}

const char* next_name(const NameEnum& names) {
    const char* name = nullptr;
    if (names->Next(1, &name, nullptr) == 0) return nullptr;
    return name != nullptr ? name : "";
}

bool read_value(IParam& node, const char* name, CQZVariant& value) {
    QZVariantClear(&value); // not every tree does that
    return node.GetValue(name, &value) != 0 || value.vt != QZVT_EMPTY;
}

WalkLevel::WalkLevel(CQZRef<IParam> at) : node(std::move(at)), children(enum_children(*node)) {}

const char* WalkLevel::next_child(CQZRef<IParam>& child) {
    const char* const name = next_name(children);
    child = CQZRef<IParam>::Adopt(name != nullptr ? node->OpenSubParam(name, 0) : nullptr);
    return name;
}

} // namespace qzr
