// Trees in the registry, live.
#include "formats/kinds.h"

#include "formats/limits.h"
#include "system/encoding.h"
#include "system/failure.h"
#include "trees/tree_copy.h"
#include "trees/values.h"

#include <algorithm>
#include <process.h>

namespace tool {

namespace {

void ignore(const std::string&, const char*) {}

CQZRef<IParam> open_key(bool machine, const std::wstring& path) {
    return CQZRef<IParam>::Adopt(machine ? new_IParamLMReg(path.c_str()) : new_IParamCUReg(path.c_str()));
}

CQZRef<IParam> open_key(const Address& address) {
    auto key = open_key(address.machine, address.inside);
    if (!key) fail(address.shown + ": there is no such key, or access to it is denied");
    return key;
}

/// A key of this process's own for trying things, removed in the end.
class ScratchKey {
public:
    ScratchKey() : parent_(open_key(false, L"Software")), name_("qzrtool-" + std::to_string(_getpid())) {
        if (parent_) root_ = CQZRef<IParam>::Adopt(parent_->CreateSubParam(name_.c_str()));
        if (!root_) fail("there is no room in the registry to try what it holds (HKCU\\Software)");
    }
    ~ScratchKey() {
        root_.Reset();
        parent_->DeleteSubParam(name_.c_str());
    }
    ScratchKey(const ScratchKey&) = delete;
    ScratchKey& operator=(const ScratchKey&) = delete;

    IParam& root() { return *root_; }

private:
    CQZRef<IParam> parent_, root_;
    std::string name_;
};

CQZRef<IParam> load(const Address& address, const LoadOptions&, Diagnostics& diagnostics) {
    return in_memory(*open_key(address), [&](const std::string& path, const char* what) {
        diagnostics.warn(address.shown,
                         std::string("ignored: the ") + what + " " + path + " is none that a tree can hold");
    });
}

CQZRef<IParam> rehearse(IParam& tree, const SaveOptions&) {
    ScratchKey scratch;
    copy_tree(tree, scratch.root(), ignore);
    return in_memory(scratch.root(), ignore);
}

/// Replacing a tree removes what was in the key, so it must be a key of a program's own.
void refuse_shared_key(const Address& address) {
    if (std::count(address.inside.begin(), address.inside.end(), L'\\') < 1)
        fail(address.shown + ": is shared by many programs; a tree is kept two levels below at least");
}

/// @return what the key holds. Fails when some of it is none of ours.
CQZRef<IParam> read_own(const Address& address, IParam& key) {
    return in_memory(key, [&](const std::string& path, const char* what) {
        fail(address.shown + ": not changed: the " + what + " " + path +
             " was not written as part of a tree, and would be lost");
    });
}

void save(const Address& address, IParam& tree, const SaveOptions& options) {
    refuse_shared_key(address);
    const auto expected = rehearse(tree, options);
    const CXString path = narrow(address.inside, "the key");
    const auto hive = open_key(address.machine, L"");
    auto key = open_key(address.machine, address.inside);
    const bool created = !key;
    if (created && hive) key = CQZRef<IParam>::Adopt(hive->OpenSubParam(path.GetData(), 1));
    if (!key) fail(address.shown + ": the key cannot be made");

    const auto before = read_own(address, *key);
    make_equal(*key, *before, tree);
    if (equal(*in_memory(*key, ignore), *expected)) return;
    make_equal(*key, *in_memory(*key, ignore), *before);
    key.Reset();
    if (created) hive->DeleteSubParam(path.GetData());
    fail(address.shown + ": not changed: the registry did not take the tree; access may be denied");
}

void edit(const Address& address, IParam& loaded, const Edit& edit) {
    refuse_lost_value(address, edit);
    const auto key = open_key(address);
    const auto before = in_memory(*key, ignore);
    apply(*key, edit);
    apply(loaded, edit);
    if (equal(*in_memory(*key, ignore), loaded)) return;
    make_equal(*key, *in_memory(*key, ignore), *before);
    fail(address.shown + ": not changed: the registry did not take the change; access may be denied");
}

} // namespace

const Kind kRegistryKind = {
    "reg",         "HKCU\\KEY", Place::registry, "",   "a key of the registry below HKCU or HKLM",
    kRegistryForm, false,       nullptr,         load, save,
    rehearse,      edit,
};

} // namespace tool
