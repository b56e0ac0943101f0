// The streams of a document.
#pragma once

#include "core/hash_map.h"
#include "qzstring.h"
#include "stream/doc_storage.h"
#include "stream/stream_slots.h"

namespace qzr {

// Asked for to tell the streams that keep objects from others; it has no operations of its own.
class IObjectKeeper : public IQZUnknown {
protected:
    ~IObjectKeeper() = default;
};

// Wraps a stream and asks the document's sink after each operation that reaches it, when all of it is done.
// Without a document, or when that has no sink, nobody is asked.
class CIXDocStream final : public StreamSlots<CIXDocStream>, public IDocStrorageInfo, public IObjectKeeper {
public:
    CIXDocStream(CQZRef<IXStream> stream, CQZRef<CIXDocStorage> top, int flags) noexcept
        : stream_(std::move(stream)), top_(std::move(top)), flags_(flags) {}
    ~CIXDocStream() override;

    unsigned AddRef() override { return InternalAddRef(); }
    unsigned Release() override { return InternalRelease(); }
    int QueryInterface(const std::type_info& iid, IQZUnknown** out) override {
        return InternalQueryInterface(iid, out);
    }
    int InternalQueryInterface(const std::type_info& iid, IQZUnknown** out) override;

    unsigned Read(void* buffer, unsigned count) override { return checked(stream_->Read(buffer, count)); }
    int Write(const void* buffer, unsigned count) override { return checked(stream_->Write(buffer, count)); }
    IXStream& measured() { return *stream_; }

    unsigned Seek(int offset, unsigned origin) override { return checked(stream_->Seek(offset, origin)); }
    unsigned GetPosition() override { return checked(stream_->GetPosition()); }
    unsigned GetSize() override { return checked(stream_->GetSize()); }
    const wchar_t* GetName() override { return checked(stream_->GetName()); }

    int GetStorage(IXStorage** out) override;
    int Reserved2() override { return 0; }
    int GetDocStorage(IXStorage** out) override;
    int Reserved4() override { return 0; }
    int GetRawStream(IXStream** out) override;
    int Reserved6() override { return 0; }
    unsigned GetFlags() override { return static_cast<unsigned>(flags_); }

    // Objects that live as long as the stream, under keys of their readers' choice. A key that is there gets
    // the new object. Throws CXMemException.
    void keep_object(const char* key, CQZRef<IQZUnknown> object);
    IQZUnknown* kept_object(const char* key) const; // without a reference; null when there is none

private:
    struct KeptObject : HashLink {
        CXString key;
        CQZRef<IQZUnknown> object;
    };

    template <class Result>
    Result checked(Result result) {
        if (top_) top_->check_progress();
        return result;
    }

    CQZRef<IXStream> stream_;
    CQZRef<CIXDocStorage> top_; // null without a document
    int flags_;
    HashMap<KeptObject, 127> objects_;
};

} // namespace qzr
