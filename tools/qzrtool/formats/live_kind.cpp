// Trees in INI files as the library keeps them live, one key a value. The work goes on in a copy, since every
// operation of that backend, opening included, writes to the file at once.
#include "formats/kinds.h"

#include "formats/limits.h"
#include "system/encoding.h"
#include "system/failure.h"
#include "system/files.h"
#include "trees/tree_copy.h"

namespace tool {

namespace {

void ignore(const std::string&, const char*) {}

/// A copy of the file, open as a live tree.
class LiveCopy {
public:
    explicit LiveCopy(std::string_view bytes) {
        replace_file(file_.path(), bytes, utf8(file_.path().wstring()));
        narrow(file_.path().wstring(), "the name of a temporary file");
        root_ = CQZRef<IParam>::Adopt(new_IParamIniFile(file_.path().c_str()));
        if (!root_) throw CXMemException();
    }

    IParam& root() { return *root_; }

    /// @return the tree without the marks by which the backend keeps its sections
    CQZRef<IParam> read(const Refused& refused) {
        auto tree = in_memory(*root_, refused);
        remove_marks(*tree);
        return tree;
    }

    std::string bytes() const { return read_file(file_.path(), utf8(file_.path().wstring())); }

private:
    class MarkRemover final : public TreeVisitor {
    public:
        bool enter(const WalkPath& path) override {
            IParam& section = *path.back().first;
            const auto mark = find_value(section, "@");
            if (mark && mark->vt == QZVT_EMPTY) section.DeleteValue("@");
            return true;
        }
    };

    static void remove_marks(IParam& tree) {
        MarkRemover remover;
        walk(tree, nullptr, remover);
    }

    ScratchFile file_;
    CQZRef<IParam> root_;
};

CQZRef<IParam> load(const Address& address, const LoadOptions&, Diagnostics& diagnostics) {
    LiveCopy copy(read_file(address.file, address.shown));
    return copy.read([&](const std::string& path, const char* what) {
        diagnostics.warn(address.shown, std::string("ignored: the ") + what + " " + path +
                                            " does not belong to the tree or cannot be read");
    });
}

CQZRef<IParam> rehearse(IParam& tree, const SaveOptions&) {
    LiveCopy copy("");
    copy_tree(tree, copy.root(), ignore);
    return copy.read(ignore);
}

/// Puts a changed copy in the file's place once it reads back as the tree that is expected.
void finish(const Address& address, LiveCopy& copy, IParam& expected) {
    if (!equal(*copy.read(ignore), expected))
        fail(address.shown + ": not changed: the tree does not read back");
    replace_file(address.file, copy.bytes(), address.shown);
}

void save(const Address& address, IParam& tree, const SaveOptions& options) {
    std::error_code ignored;
    const bool exists = std::filesystem::is_regular_file(address.file, ignored);
    LiveCopy copy(exists ? read_file(address.file, address.shown) : std::string());
    make_equal(copy.root(), *copy.read(ignore), tree);
    finish(address, copy, *rehearse(tree, options));
}

void edit(const Address& address, IParam& loaded, const Edit& edit) {
    refuse_lost_value(address, edit);
    LiveCopy copy(read_file(address.file, address.shown));
    apply(copy.root(), edit);
    apply(loaded, edit);
    finish(address, copy, loaded);
}

} // namespace

const Kind kLiveKind = {
    "live",    "FILE", Place::file, "",   "an INI file as programs keep it live, a key for each value",
    kLiveForm, true,   nullptr,     load, save,
    rehearse,  edit,
};

} // namespace tool
