// A remote compound file: a storage on its local copy.
#include "core/system_error.h"
#include "fio/ftp_transfer.h"
#include "fio/local_copy.h"
#include "qzref.h"
#include "qzstream.h"
#include "qzstring.h"
#include "qzurl.h"

#include <new>
#include <utility>

namespace qzr {

// Everything goes to the storage inside, only the name is the URL.
class CUrlStorage final : public CQZUnknownImpl<IXStorage> {
public:
    CUrlStorage(CQZRef<IXStorage> storage, const wchar_t* url, LocalCopy copy)
        : copy_(std::move(copy)), storage_(std::move(storage)), url_(url) {}

    IXStorage* CreateStorage(const char* name) override { return storage_->CreateStorage(name); }
    IXStorage* OpenStorage(const char* name) override { return storage_->OpenStorage(name); }
    void DestroyStorage(const char* name) override { storage_->DestroyStorage(name); }
    IXStorage* GetParent() override { return storage_->GetParent(); }
    CTEnum<const char*>* EnumStorages() override { return storage_->EnumStorages(); }
    IXStream* CreateStream(const char* name) override { return storage_->CreateStream(name); }
    IXStream* OpenStream(const char* name) override { return storage_->OpenStream(name); }
    void DestroyStream(const char* name) override { storage_->DestroyStream(name); }
    int Commit() override { return storage_->Commit(); } // of the copy: nothing is sent back
    CTEnum<const char*>* EnumStreams() override { return storage_->EnumStreams(); }
    const wchar_t* GetName() override { return url_; }

private:
    LocalCopy copy_; // goes after the storage on it
    CQZRef<IXStorage> storage_;
    CXStringW url_;
};

namespace {

bool is_empty(const wchar_t* text) { return text == nullptr || *text == L'\0'; }

} // namespace

} // namespace qzr

IXStorage* open_UrlStorage(const wchar_t* url, const wchar_t* localPath, int mode) {
    qzr::LocalCopy copy(qzr::is_empty(localPath) ? Fio_GetTempFileName() : localPath);
    if (qzr::download(url, copy.path()) != ERROR_SUCCESS) {
        if (!qzr::is_empty(localPath)) copy.keep(); // what lay there before is not ours
        throw CXFileException(QZERR_NETWORK, QZOP_OPEN, nullptr);
    }
    auto storage = CQZRef<IXStorage>::Adopt(open_Storage(copy.path(), mode));
    if (!storage) return nullptr;
    return new (std::nothrow) qzr::CUrlStorage(std::move(storage), url, std::move(copy));
}
