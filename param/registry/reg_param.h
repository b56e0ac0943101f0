// Keys of the registry as parameter trees.
#pragma once

#include "param/param_node.h"
#include "param/registry/reg_key.h"

namespace qzr {

// A node is an open key; sub-keys are its children. Nothing is kept beside the registry.
class CRegistryParam final : public ParamNode {
public:
    // Throws CXMemException; the key is closed then.
    explicit CRegistryParam(RegKey key) : key_(std::move(key)) {}

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

private:
    ~CRegistryParam() override = default;

    const RegKey key_;
};

} // namespace qzr
