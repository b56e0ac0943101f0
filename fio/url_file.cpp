// Remote files as objects: local files with a download before or an upload behind.
#include "core/system_error.h"
#include "fio/forwarded_file.h"
#include "fio/ftp_transfer.h"
#include "fio/local_copy.h"
#include "qzref.h"
#include "qzstring.h"
#include "qzurl.h"

#include <new>
#include <utility>

namespace qzr {

class CXUrlFile final : public ForwardedFile<CXUrlFile, IXFile> {
public:
    CXUrlFile(CQZRef<IXFile> file, const wchar_t* url, LocalCopy copy)
        : copy_(std::move(copy)), file_(std::move(file)), url_(url) {}
    ~CXUrlFile() override {
        try {
            close();
        } catch (const CXException&) {
            // Only who deletes the object instead of releasing it comes here.
        }
    }

    IXFile& inner() { return *file_; }
    const wchar_t* GetName() override { return file_->GetName(); }

    // Closing the local file may fail. The reference is not given up then, as with local files.
    unsigned InternalRelease() override {
        if (m_cRef == 1) close();
        return CQZUnknownImpl<IXFile>::InternalRelease();
    }

private:
    void close() {
        if (!file_) return;
        file_->Release();
        file_.Detach();
    }

    LocalCopy copy_; // goes after the file on it
    CQZRef<IXFile> file_;
    CXStringW url_;
};

class CXUrlOutFile final : public ForwardedFile<CXUrlOutFile, IXOutFile> {
public:
    CXUrlOutFile(CQZRef<IXOutFile> file, const wchar_t* url, LocalCopy copy)
        : copy_(std::move(copy)), file_(std::move(file)), url_(url) {}

    // What was not committed leaves its temporary file behind, empty: callers know it by GetName.
    ~CXUrlOutFile() override {
        if (!complete_) copy_.keep();
    }

    IXOutFile& inner() { return *file_; }
    const wchar_t* GetName() override { return file_->GetName(); }

    // Whether the file arrived is not asked: callers rely on Commit going on without a network. Once only: a
    // local commit that failed is not made good by the next one, which would send an empty file.
    void Commit() override {
        if (std::exchange(commit_began_, true)) return;
        file_->Commit();
        complete_ = true;
        Fio_UrlPutFile(url_, copy_.path());
        copy_.remove();
    }

private:
    LocalCopy copy_; // goes after the file on it
    CQZRef<IXOutFile> file_;
    CXStringW url_;
    bool commit_began_ = false;
    bool complete_ = false; // the temporary file is what is to be sent
};

} // namespace qzr

IXFile* Fio_UrlOpen(const wchar_t* url, int mode) {
    qzr::LocalCopy copy(Fio_GetTempFileName());
    const DWORD error = qzr::download(url, copy.path());
    if (error != ERROR_SUCCESS) qzr::throw_file_error(QZOP_OPEN, url, error);
    auto file = CQZRef<IXFile>::Adopt(Fio_Open(copy.path(), mode));
    if (!file) return nullptr;
    return new (std::nothrow) qzr::CXUrlFile(std::move(file), url, std::move(copy));
}

IXOutFile* Fio_UrlOpenOut(const wchar_t* url, int mode) {
    if (Fio_IsWritableFile(url) == 0) throw CXException(QZERR_ACCESS);
    qzr::LocalCopy copy(Fio_GetTempFileName());
    auto file = CQZRef<IXOutFile>::Adopt(Fio_OpenOut(copy.path(), mode | QZFILE_WRITE));
    if (!file) return nullptr;
    return new (std::nothrow) qzr::CXUrlOutFile(std::move(file), url, std::move(copy));
}
