#include "fio/out_file.h"

#include "core/scope_exit.h"
#include "fio/file_state.h"
#include "fio/forwarded_file.h"
#include "fio/mapped_file.h"
#include "fio/temp_name.h"

#include <cwchar>
#include <memory>
#include <new>

namespace qzr {

namespace {

// Why a directory takes no temporary file. The table differs from that of files.
QZError temp_file_error_code(DWORD error) noexcept {
    switch (error) {
    case ERROR_PATH_NOT_FOUND:
    case ERROR_BAD_NETPATH:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_DIRECTORY:
        return QZERR_BAD_PATH;
    case ERROR_ACCESS_DENIED:
        return QZERR_ACCESS;
    case ERROR_NETNAME_DELETED:
    case ERROR_NETWORK_ACCESS_DENIED:
    case ERROR_BAD_DEV_TYPE:
    case ERROR_BAD_NET_NAME:
        return QZERR_NETWORK;
    default:
        return QZERR_MEMORY;
    }
}

// Throws CXException.
FullPath create_beside(const wchar_t* target) {
    const CXStringW directory = CXStringW(target).FilePath();
    wchar_t path[kPathUnits] = L"";
    const DWORD error = make_temp_file(directory.GetSize() != 0 ? directory.GetData() : L".", path);
    if (error != ERROR_SUCCESS) throw CXException(temp_file_error_code(error));
    return FullPath(path);
}

// A temporary file beside the target, deleted in the end unless it was given away.
class TemporaryFile {
public:
    // Throws CXException.
    explicit TemporaryFile(const wchar_t* target) : path_(create_beside(target)) {}
    ~TemporaryFile() {
        if (!owned_) return;
        try {
            Fio_DeleteFile(path());
        } catch (const CXException&) {
            // Nobody can be told; it stays behind, marked as unfinished.
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    // Makes it a copy of a document. The copy grows under a name that is not one of temporary files: what a
    // stopped program leaves of it would look like a whole document. Throws CXFileException.
    void copy_from(const wchar_t* document) const {
        wchar_t growing[kPathUnits];
        std::wcscpy(growing, path());
        growing[std::wcslen(growing) - 1] = L'_';
        ScopeExit undo([&growing] { DeleteFileW(growing); });
        Fio_CopyFile(document, growing, 0);
        if (MoveFileExW(growing, path(), MOVEFILE_REPLACE_EXISTING) == FALSE)
            throw_file_error(QZOP_COPY, document);
        undo.dismiss();
    }

    const wchar_t* path() const noexcept { return path_.get(); }
    void give_away() noexcept { owned_ = false; }

private:
    const FullPath path_;
    bool owned_ = true;
};

} // namespace

class CXOutFile final : public ForwardedFile<CXOutFile, IXOutFile> {
public:
    CXOutFile(const wchar_t* target, int mode);
    ~CXOutFile() override;

    CXFile& inner() {
        if (!inner_) throw CXFileException(QZERR_OTHER, QZOP_WRITE, target_.get());
        return *inner_;
    }
    const wchar_t* GetName() override { return target_.get(); }
    void Commit() override;

private:
    struct Discard {
        void operator()(CXFile* file) const noexcept {
            file->discard();
            delete file;
        }
    };

    bool target_exists(bool keep) const;
    void open_inner(int mode);
    void finish_inner();
    bool give_lock_back();
    void delete_target();
    void rename_to_target(bool target_deleted);

    const FilePath target_; // as it was given: its locks go by that, and failures name it so
    const FullPath place_;  // of the target, for what happens after opening
    TemporaryFile temp_;
    std::unique_ptr<CXFile, Discard> inner_; // on the temporary file; none once a commit began
    bool locked_ = false;                    // a shared lock of the target is ours
    bool lock_settled_ = false;              // a commit saw to the lock
};

// What was taken is given back when a later step fails: the destructor does not run then.
CXOutFile::CXOutFile(const wchar_t* target, int mode)
    : target_(target, QZOP_WRITE), place_(target_.get()), temp_(target_.get()) {
    if (Fio_IsWritableFile(target_.get()) == 0) throw CXFileException(QZERR_ACCESS, QZOP_OPEN, target_.get());
    // A temporary file that the system deletes when it is closed could never take the target's place.
    mode = (mode & ~QZFILE_TEMPORARY) | QZFILE_WRITE;
    const bool keep = (mode & QZFILE_KEEP) != 0;
    if (!target_exists(keep)) {
        open_inner(mode & ~QZFILE_KEEP);
        return;
    }
    if (keep) temp_.copy_from(target_.get());
    file_state().locks.lock_existing(target_.get(), false);
    ScopeExit unlock([this] { Fio_UnlockFile(target_.get(), false); });
    open_inner(mode);
    unlock.dismiss();
    locked_ = true;
}

CXOutFile::~CXOutFile() {
    inner_.reset();
    if (lock_settled_) return;
    try {
        give_lock_back();
    } catch (...) {
        // Only exhausted memory comes this far. No exception leaves a destructor.
    }
}

// What is to be kept must not be taken for missing because it could not be looked up: the commit would
// replace it by what was added alone.
bool CXOutFile::target_exists(bool keep) const {
    if (!keep) return Fio_IsFileExist(target_.get()) != 0;
    try {
        FioFileInfo ignored;
        Fio_GetFileInfo(target_.get(), &ignored);
        return true;
    } catch (const CXFileException& e) {
        if (e.m_nCode != QZERR_NOT_FOUND && e.m_nCode != QZERR_BAD_PATH) throw;
        return false;
    }
}

void CXOutFile::open_inner(int mode) {
    inner_.reset(new (std::nothrow) CXFile(temp_.path(), mode));
    if (!inner_) throw CXMemException();
    inner_->begin_temporary();
    inner_->go_to_end(); // of the copy; a new file has no other place
}

void CXOutFile::Commit() {
    if (!inner_) return;
    finish_inner();
    const PathInUse in_use(target_.get());
    const bool exists = give_lock_back();
    lock_settled_ = true;
    if (exists) delete_target();
    rename_to_target(exists);
}

// Whatever fails here, the file is gone afterwards, and the temporary file goes with this object.
void CXOutFile::finish_inner() {
    const std::unique_ptr<CXFile, Discard> file = std::move(inner_);
    file->settle();
    file->close();
}

// Gives a lock back for a target that exists, even one that came into being meanwhile: counts stop at 0. And
// our own lock in any case. @return whether the target exists
bool CXOutFile::give_lock_back() {
    const bool exists = Fio_IsFileExist(place_.get()) != 0;
    if (exists || locked_) Fio_UnlockFile(target_.get(), false);
    locked_ = false;
    return exists;
}

void CXOutFile::delete_target() {
    try {
        Fio_DeleteFile(place_.get());
    } catch (const CXFileException& e) {
        throw CXFileException(e.m_nCode, QZOP_DELETE, target_.get());
    }
}

// With the target deleted the temporary file is the document: it stays when it cannot be renamed.
void CXOutFile::rename_to_target(bool target_deleted) {
    try {
        Fio_RenameFile(temp_.path(), place_.get());
    } catch (const CXFileException& e) {
        if (target_deleted) temp_.give_away();
        throw CXFileException(e.m_nCode, QZOP_RENAME, target_.get());
    }
    temp_.give_away();
}

IXOutFile* open_out_file(const wchar_t* target, int mode) {
    // In this order since most files can be written, and looking one up costs twice as much as opening it.
    if (Fio_IsWritableFile(target) == 0 && Fio_IsFileExist(target) != 0) throw CXException(QZERR_ACCESS);
    return new (std::nothrow) CXOutFile(target, mode);
}

} // namespace qzr
