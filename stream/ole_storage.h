// Storages over the platform's IStorage.
#pragma once

#include "qzstream.h"
#include "qzstring.h"
#include "stream/platform_storage.h"

namespace qzr {

// The platform's flags for reading, or for reading and writing, as the storage mode says. Everything is
// opened exclusively.
constexpr DWORD access_flags(int mode) noexcept {
    return ((mode & QZSTORAGE_READ_ONLY) != 0 ? STGM_READ : STGM_READWRITE) | STGM_SHARE_EXCLUSIVE;
}

// The same for a storage, which may be transacted.
constexpr DWORD storage_flags(int mode) noexcept {
    return access_flags(mode) | ((mode & QZSTORAGE_TRANSACTED) != 0 ? STGM_TRANSACTED : 0);
}

// A storage that can be written to is committed when it goes, whether or not Commit was ever called; that
// commit's failure is not told. A child holds its parent, and shows the parent's path as its own.
class CStorage final : public CQZUnknownImpl<IXStorage> {
public:
    // One without a storage yet, which goes to place(): creating replaces a file or an element, so all that
    // needs memory comes first. Throws CXMemException.
    static CQZRef<CStorage> make(const wchar_t* path, int mode, CStorage* parent = nullptr);
    IStorage** place() noexcept { return storage_.Put(); }

    IXStorage* CreateStorage(const char* name) override;
    IXStorage* OpenStorage(const char* name) override;
    void DestroyStorage(const char* name) override;
    IXStorage* GetParent() override;
    CTEnum<const char*>* EnumStorages() override;
    IXStream* CreateStream(const char* name) override;
    IXStream* OpenStream(const char* name) override;
    void DestroyStream(const char* name) override;
    int Commit() override;
    CTEnum<const char*>* EnumStreams() override;
    const wchar_t* GetName() override { return path_.GetData(); }

    unsigned InternalRelease() override;

    // Without a reference of its own.
    IStorage* platform() const noexcept { return storage_.Get(); }

private:
    CStorage(const wchar_t* path, int mode, CStorage* parent);
    ~CStorage() override;

    CQZRef<CStorage> make_child() { return make(path_.GetData(), mode_, this); }
    void destroy(const char* name);

    CXStringW path_;
    int mode_; // bits of QZStorageMode
    PlatformStorage storage_;
    CQZRef<CStorage> parent_; // null in a root
};

} // namespace qzr
