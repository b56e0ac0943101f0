// Parameter trees in memory.
#pragma once

#include "param/memory/name_list.h"
#include "param/param_node.h"
#include "param/param_path.h"
#include "qzref.h"
#include "qzvariant.h"

namespace qzr {

// A node. It holds one reference of each child; it does not know its parent. Nodes are many: what an empty
// one does not need is made on demand.
class CMemParam final : public ParamNode {
public:
    // A node with one reference for the caller; null when there is no memory.
    static CMemParam* make() noexcept;

    IParam* CreateSubParam(const char* name) override;
    IParam* OpenSubParam(const char* name, int create) override;
    void DeleteSubParam(const char* name) override;
    void DeleteAllSubParams() override;
    CTEnum<const char*>* EnumSubParams() override;
    int GetValue(const char* name, tagQZVARIANT* out) override;
    void SetValue(const char* name, const tagQZVARIANT* value) override;
    void DeleteValue(const char* name) override;
    void DeleteAllValues() override;
    CTEnum<const char*>* EnumValues() override;
    void Clear() override;

    unsigned InternalRelease() override;

    // As GetValue, but the value borrows what it refers to: good until the tree changes. False when there is
    // none.
    bool borrow_value(const char* name, tagQZVARIANT& value) const;

private:
    CMemParam() = default;
    ~CMemParam() override = default; // emptied by destroy()

    NameEntry* find_value(unsigned hash) const noexcept;
    const NameEntry* value_at(const char* path) const;
    CMemParam* find_child(unsigned hash) const noexcept; // borrowed; null when there is none
    void store(const PathPart& name, const tagQZVARIANT& value);

    // Paths up to stop, which is a "\" of the path or null for its end.
    CQZRef<CMemParam> open_path(const char* path, const char* stop, bool create);
    CQZRef<CMemParam> create_path(const char* path, const char* stop);
    CMemParam* add_child(const PathPart& name);

    void release_children(CMemParam*& dying) noexcept;
    static void destroy(CMemParam* dying) noexcept;

    CQZRef<NameList> values_;         // null in a node that never had one
    CQZRef<NameList> children_;       // the same; of pointers with one reference each
    CMemParam* next_dying_ = nullptr; // links nodes without references that wait for destroy()
};

} // namespace qzr
