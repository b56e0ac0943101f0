#include "storage/compound_file.h"

#include "qzrange.h"
#include "system/error_text.h"
#include "system/failure.h"

#include <algorithm>

namespace tool {

namespace {

namespace fs = std::filesystem;

std::vector<CXString> sorted(qz::Names names) {
    std::vector<CXString> sorted(names.begin(), names.end());
    std::sort(sorted.begin(), sorted.end(),
              [](const CXString& a, const CXString& b) { return a.Compare(b.GetData()) < 0; });
    return sorted;
}

CQZRef<IXStorage> with_progress(const CQZRef<IXStorage>& storage, Progress* progress) {
    if (progress == nullptr) return storage;
    CQZRef<IXStorage> wrapped;
    new_CIXDocStorage(storage.Get(), progress, wrapped.Put(), 0);
    if (!wrapped) throw CXMemException();
    return wrapped;
}

CQZRef<IXStorage> open_root(const fs::path& file, const std::string& shown, bool writable) {
    try {
        return CQZRef<IXStorage>::Adopt(open_Storage(file.c_str(), writable ? 0 : 1));
    } catch (const CXFileException& e) {
        if (e.GetCode() == QZERR_FORMAT || e.GetCode() == QZERR_DEVICE)
            fail(shown + ": is no compound file, or a damaged one");
        fail(shown + ": cannot be opened: " + error_text(e));
    }
}

} // namespace

CQZRef<IXStorage> open_compound_file(const fs::path& file, const std::string& shown, Progress* progress) {
    std::error_code ignored;
    if (fs::is_directory(file, ignored)) fail(shown + ": is a directory");
    return with_progress(open_root(file, shown, false), progress);
}

std::vector<CXString> storage_names(IXStorage& storage) { return sorted(qz::storage_names(storage)); }
std::vector<CXString> stream_names(IXStorage& storage) { return sorted(qz::stream_names(storage)); }

CQZRef<IXStorage> open_storage(IXStorage& parent, const CXString& name) {
    try {
        return CQZRef<IXStorage>::Adopt(parent.OpenStorage(name.GetData()));
    } catch (const CXException& e) {
        if (e.GetCode() == QZERR_NOT_FOUND) return {};
        throw;
    }
}

CQZRef<IXStorage> find_storage(IXStorage& root, const ElementNames& path) {
    auto storage = CQZRef<IXStorage>::Share(&root);
    for (const CXString& name : path) {
        storage = open_storage(*storage, name);
        if (!storage) break;
    }
    return storage;
}

CQZRef<IXStorage> make_storage(IXStorage& root, const ElementNames& path) {
    auto storage = CQZRef<IXStorage>::Share(&root);
    for (const CXString& name : path) {
        auto child = open_storage(*storage, name);
        if (!child && CQZRef<IXStream>::Adopt(storage->OpenStream(name.GetData())))
            fail(element_text({name}) + " is a stream, not a storage");
        if (!child) child = CQZRef<IXStorage>::Adopt(storage->CreateStorage(name.GetData()));
        storage = child;
    }
    return storage;
}

void clear_storage(IXStorage& storage) {
    for (const CXString& name : storage_names(storage)) {
        storage.DestroyStorage(name.GetData());
    }
    for (const CXString& name : stream_names(storage)) {
        storage.DestroyStream(name.GetData());
    }
}

CompoundFileEdit::CompoundFileEdit(const fs::path& file, const std::string& shown, Start start,
                                   Progress* progress)
    : shown_(shown), replacement_(file, shown) {
    std::error_code ignored;
    const bool copied = start == from_contents && fs::exists(file, ignored);
    if (copied) copy_contents(file, progress);
    replacement_.close();
    base_ = copied ? open_root(replacement_.path(), shown_, true)
                   : CQZRef<IXStorage>::Adopt(new_Storage(replacement_.path().c_str(), 0));
    root_ = with_progress(base_, progress);
}

void CompoundFileEdit::copy_contents(const fs::path& file, Progress* progress) {
    std::error_code ignored;
    if (progress != nullptr) progress->begin(fs::file_size(file, ignored));
    read_pieces(file, shown_, [&](std::string_view piece) {
        replacement_.write(piece);
        if (progress == nullptr) return;
        progress->advance(piece.size());
        progress->check();
    });
}

void CompoundFileEdit::commit() {
    if (base_->Commit() < 0) fail(shown_ + ": cannot be written: the storage does not commit");
    root_.Reset();
    base_.Reset();
    replacement_.take_place();
}

} // namespace tool
