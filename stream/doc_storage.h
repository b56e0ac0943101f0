// The storages of a document whose transfers a progress sink watches.
#pragma once

#include "qzref.h"
#include "qzstream.h"
#include "stream/progress.h"

#include <utility>

namespace qzr {

// Wraps a storage. Everything opened inside is wrapped in the same way and holds the document's top storage,
// through which its streams find the sink.
class CIXDocStorage final : public CQZUnknownImpl<IXStorage> {
public:
    // The top storage of a document; the sink may be null.
    CIXDocStorage(CQZRef<IXStorage> storage, CQZRef<QZRFC::IProgress> progress, int flags) noexcept
        : CIXDocStorage(std::move(storage), nullptr, std::move(progress), flags) {}

    IXStorage* CreateStorage(const char* name) override { return wrap(storage_->CreateStorage(name)); }
    IXStorage* OpenStorage(const char* name) override { return wrap(storage_->OpenStorage(name)); }
    IXStream* CreateStream(const char* name) override { return wrap(storage_->CreateStream(name)); }
    IXStream* OpenStream(const char* name) override { return wrap(storage_->OpenStream(name)); }

    void DestroyStorage(const char* name) override { storage_->DestroyStorage(name); }
    void DestroyStream(const char* name) override { storage_->DestroyStream(name); }
    IXStorage* GetParent() override {
        return storage_->GetParent();
    } // the wrapped one's, which is not wrapped
    CTEnum<const char*>* EnumStorages() override { return storage_->EnumStorages(); }
    CTEnum<const char*>* EnumStreams() override { return storage_->EnumStreams(); }
    int Commit() override { return storage_->Commit(); }
    const wchar_t* GetName() override { return storage_->GetName(); }

    // The top document storage with a reference; itself when it is the top one.
    CQZRef<CIXDocStorage> top() { return top_ ? top_ : CQZRef<CIXDocStorage>::Share(this); }

    // Takes over the stream's reference; null stays null. Throws CXMemException, the stream is released then.
    IXStream* wrap(IXStream* stream);

    // Of the top one.
    IXStorage* storage() const noexcept { return storage_.Get(); }
    void check_progress() const { qzr::check_progress(progress_.Get()); }

private:
    CIXDocStorage(CQZRef<IXStorage> storage, CQZRef<CIXDocStorage> top, CQZRef<QZRFC::IProgress> progress,
                  int flags) noexcept
        : storage_(std::move(storage)), top_(std::move(top)), progress_(std::move(progress)), flags_(flags) {}

    IXStorage* wrap(IXStorage* child); // as with streams

    CQZRef<IXStorage> storage_;
    CQZRef<CIXDocStorage> top_;         // null in the top one
    CQZRef<QZRFC::IProgress> progress_; // released first
    int flags_;
};

} // namespace qzr
