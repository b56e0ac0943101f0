// Storages as parameter trees.
#pragma once

#include "param/param_node.h"
#include "param/param_path.h"
#include "qzref.h"
#include "qzstream.h"

namespace qzr {

// A node is a storage: child storages are its children, streams of one variant each its values. Nothing is
// kept beside the storage. A node answers for IXStorage with it.
class CIXStorParam final : public ParamNode {
public:
    // Throws CXMemException. The parent is null in a root.
    CIXStorParam(CQZRef<IXStorage> storage, CIXStorParam* parent);

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

private:
    using Node = CQZRef<CIXStorParam>;

    ~CIXStorParam() override = default;

    Node node_over(IXStorage* child); // takes the reference; null gives null
    Node create_child(const char* name);
    Node open_child(const char* name, bool create);
    Node open_path(std::string_view path, bool create);
    bool is_child(const char* name);
    void remove(const char* name);
    void write_value(const char* name, const tagQZVARIANT& value);

    CQZRef<CIXStorParam> parent_;
    CQZRef<IXStorage> storage_;
};

} // namespace qzr
