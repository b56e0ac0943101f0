// Trees in compound files: a storage for each section, a stream for each value.
#include "formats/kinds.h"

#include "formats/limits.h"
#include "storage/storage_walk.h"
#include "system/failure.h"
#include "trees/tree_copy.h"

namespace tool {

namespace {

constexpr std::string_view kMark = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"; // every compound file begins so

void ignore(const std::string&, const char*) {}

bool recognises(std::string_view bytes) { return bytes.starts_with(kMark); }

CQZRef<IParam> tree_over(IXStorage& storage) {
    auto tree = CQZRef<IParam>::Adopt(new_IXStorParam(&storage));
    if (!tree) throw CXMemException();
    return tree;
}

CQZRef<IXStorage> storage_of(const Address& address, IXStorage& root) {
    const ElementPath path = element_path(address.inside);
    auto storage = find_storage(root, path.names);
    if (!storage) fail(address.shown + ": there is no storage " + element_text(path.names) + " in the file");
    return storage;
}

/// Trees have no end in a file whose damaged directory leads in circles.
void refuse_circles(const Address& address, IXStorage& storage) {
    std::error_code ignored;
    bytes_in(storage, std::filesystem::file_size(address.file, ignored));
}

CQZRef<IParam> load(const Address& address, const LoadOptions&, Diagnostics& diagnostics) {
    const auto root = open_compound_file(address.file, address.shown, nullptr);
    const auto storage = storage_of(address, *root);
    refuse_circles(address, *storage);
    const auto live = tree_over(*storage);
    return in_memory(*live, [&](const std::string& path, const char* what) {
        diagnostics.warn(address.shown, std::string("ignored: the ") + what + " " + path +
                                            " cannot be read as part of a tree");
    });
}

CQZRef<IParam> rehearse(IParam& tree, const SaveOptions&) {
    const auto storage = CQZRef<IXStorage>::Adopt(new_Storage(nullptr, 0));
    const auto live = tree_over(*storage);
    copy_tree(tree, *live, ignore);
    return in_memory(*live, ignore);
}

/// Other contents of a document must not go because a tree is written over them.
void refuse_foreign_contents(const Address& address, IParam& live) {
    in_memory(live, [&](const std::string& path, const char* what) {
        fail(address.shown + ": not changed: the " + what + " " + path +
             " was not written as part of a tree, and would be lost");
    });
}

void save(const Address& address, IParam& tree, const SaveOptions& options) {
    const auto expected = rehearse(tree, options);
    CompoundFileEdit file(address.file, address.shown, CompoundFileEdit::from_contents, nullptr);
    {
        const auto storage = make_storage(file.root(), element_path(address.inside).names);
        const auto live = tree_over(*storage);
        refuse_circles(address, *storage);
        refuse_foreign_contents(address, *live);
        clear_storage(*storage);
        copy_tree(tree, *live, ignore);
        if (!equal(*in_memory(*live, ignore), *expected))
            fail(address.shown + ": not changed: the tree does not read back");
    }
    file.commit();
}

void edit(const Address& address, IParam& loaded, const Edit& edit) {
    refuse_lost_value(address, edit);
    apply(loaded, edit);
    CompoundFileEdit file(address.file, address.shown, CompoundFileEdit::from_contents, nullptr);
    {
        const auto live = tree_over(*storage_of(address, file.root()));
        apply(*live, edit);
        if (!equal(*in_memory(*live, ignore), loaded))
            fail(address.shown + ": not changed: the tree does not read back");
    }
    file.commit();
}

} // namespace

const Kind kStorageKind = {
    "stor",
    "FILE[!STORAGE]",
    Place::storage,
    ".qzc",
    "a compound file, or a storage in one",
    kStorageForm,
    true,
    recognises,
    load,
    save,
    rehearse,
    edit,
};

} // namespace tool
