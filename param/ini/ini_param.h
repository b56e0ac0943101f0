// INI files as live parameter trees.
#pragma once

#include "param/ini/profile.h"
#include "param/param_node.h"
#include "qzref.h"
#include "qzstring.h"

namespace qzr {

// A node is a section, named by its path: "\" is the root, "\a\b" the child b of its child a. Nothing is kept
// beside the file. A node holds a reference to the one that it was opened through.
class CIniFileParam final : public ParamNode {
public:
    // The root. Throws CXMemException; mark() is still to be called.
    explicit CIniFileParam(const CXString& file);

    // A section without the key "@" gets it, with the empty value: a section without keys would not exist.
    // Throws CXMemException, and CXFileException when the file's directory is missing and cannot be made.
    void mark() const { mark_unless_in(profile().keys(section_.GetData())); }

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
    CIniFileParam(CIniFileParam& parent, const CXString& section);
    ~CIniFileParam() override = default;

    void mark_unless_in(ProfileNames keys) const;

    bool is_root() const;
    Profile profile() const { return Profile(file_.GetData()); }
    CXString child_section(const char* name) const;
    CQZRef<CIniFileParam> open(const char* name);
    CQZRef<CIniFileParam> create(const char* name);
    int read(const char* key, tagQZVARIANT& out) const;
    void store(const char* key, const tagQZVARIANT& value) const;

    CQZRef<CIniFileParam> parent_;
    const CXString file_;
    const CXString section_;
};

} // namespace qzr
