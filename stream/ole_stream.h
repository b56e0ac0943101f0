// Streams over the platform's IStream.
#pragma once

#include "qzstring.h"
#include "stream/platform_storage.h"
#include "stream/stream_slots.h"

#include <utility>

namespace qzr {

// The operations of IXStream on a platform stream. Subclasses give the name. Every failure throws
// CXFileException with that name: reading and writing with QZOP_READ, moving and measuring with QZOP_SEEK.
class OleStream : public StreamSlots<OleStream> {
public:
    unsigned Read(void* buffer, unsigned count) final;
    int Write(const void* buffer, unsigned count) final;
    unsigned Seek(int offset, unsigned origin) final;
    unsigned GetPosition() final;
    unsigned GetSize() final;

    // Without a reference of its own.
    IStream* platform() const noexcept { return stream_.Get(); }

    HRESULT resize(unsigned size) noexcept; // what the platform answers

    // Grows the stream from `from` bytes to `size` and writes what belongs there; the position is the start
    // then. A failure leaves the stream as long as it was, and its first bytes alone in any case.
    void extend(const void* bytes, unsigned from, unsigned size);

protected:
    OleStream() noexcept = default; // on nothing yet
    explicit OleStream(PlatformStream stream) noexcept : stream_(std::move(stream)) {}

    IStream** place() noexcept { return stream_.Put(); } // for the platform's stream
    unsigned move(long long offset, DWORD origin);       // the low half of the new position

private:
    void check(HRESULT result, QZFileOperation operation);

    PlatformStream stream_;
};

// A stream of a storage, named like its element. It does not hold the storage: when that goes first, the
// platform reverts the stream, and every operation on it throws from then on.
class CStream final : public OleStream {
public:
    // The platform's stream goes to place(), once there is an object to hold it. Throws CXMemException.
    explicit CStream(const wchar_t* name) : name_(name) {}
    using OleStream::place;

    int ReadLineW(wchar_t* buffer, int max) override;
    int ReadLine(char* buffer, int max) override;
    const wchar_t* GetName() override { return name_.GetData(); }

private:
    template <class Char>
    int read_line(Char* buffer, int max);

    CXStringW name_;
};

// Any platform stream that comes from outside. It may be one that cannot seek, so nothing is read ahead.
class COLEBasedXStream final : public OleStream {
public:
    explicit COLEBasedXStream(PlatformStream stream) noexcept : OleStream(std::move(stream)) {}
    const wchar_t* GetName() override { return L"OLE stream"; }
};

// The stream of a storage that a stream is, or that it wraps as one of a document; null for any other.
CQZRef<OleStream> storage_stream_below(IXStream& stream);

} // namespace qzr
