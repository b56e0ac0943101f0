#include "stream/ole_stream.h"

#include "stream/line_run.h"
#include "stream/seek.h"
#include "stream/stg_error.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace qzr {

void OleStream::check(HRESULT result, QZFileOperation operation) {
    if (FAILED(result)) check_storage(result, operation, GetName());
}

unsigned OleStream::Read(void* buffer, unsigned count) {
    ULONG read = 0;
    check(stream_->Read(buffer, count, &read), QZOP_READ);
    return read;
}

int OleStream::Write(const void* buffer, unsigned count) {
    ULONG written = 0;
    check(stream_->Write(buffer, count, &written), QZOP_READ); // not QZOP_WRITE: callers know it so
    if (written != count) check(STG_E_MEDIUMFULL, QZOP_READ);
    return static_cast<int>(written);
}

unsigned OleStream::move(long long offset, DWORD origin) {
    LARGE_INTEGER distance;
    distance.QuadPart = offset;
    ULARGE_INTEGER position = {};
    check(stream_->Seek(distance, origin, &position), QZOP_SEEK);
    return position.LowPart;
}

// A target before the start is found here: some platforms go there, and the next write would have to fill
// the space up to it.
unsigned OleStream::Seek(int offset, unsigned origin) {
    static_assert(STREAM_SEEK_SET == 0 && STREAM_SEEK_CUR == 1 && STREAM_SEEK_END == 2);
    if (origin > 2) throw_bad_origin(GetName());
    if (offset < 0) {
        const unsigned base = origin == 0 ? 0 : origin == 1 ? GetPosition() : GetSize();
        if (std::int64_t{base} + offset < 0) check(STG_E_INVALIDFUNCTION, QZOP_SEEK);
    }
    return move(offset, origin);
}

unsigned OleStream::GetPosition() { return move(0, STREAM_SEEK_CUR); }

unsigned OleStream::GetSize() {
    STATSTG statistics = {};
    check(stream_->Stat(&statistics, STATFLAG_NONAME), QZOP_SEEK);
    return statistics.cbSize.LowPart;
}

HRESULT OleStream::resize(unsigned size) noexcept {
    ULARGE_INTEGER wanted = {};
    wanted.LowPart = size;
    return stream_->SetSize(wanted);
}

// What is new is written at once, and not only claimed: some platforms find room when it is written to.
void OleStream::extend(const void* bytes, unsigned from, unsigned size) {
    check(resize(size), QZOP_READ);
    try {
        move(from, STREAM_SEEK_SET);
        Write(static_cast<const char*>(bytes) + from, size - from);
        move(0, STREAM_SEEK_SET);
    } catch (const CXFileException&) {
        resize(from);
        throw;
    }
}

CQZRef<OleStream> storage_stream_below(IXStream& stream) {
    auto below = CQZRef<IXStream>::Share(&stream);
    while (const auto document = CQZRef<IDocStrorageInfo>::Query(below.Get()))
        if (document->GetRawStream(below.Put()) == 0) return {};
    return CQZRef<OleStream>::Share(dynamic_cast<OleStream*>(below.Get()));
}

// Reads ahead and goes back behind the line: a platform call for each character would cost more.
template <class Char>
int CStream::read_line(Char* buffer, int max) {
    constexpr unsigned kAhead = 128 / sizeof(Char);
    unsigned char ahead[kAhead * sizeof(Char)];
    std::int64_t have = 0;
    while (have < max) {
        const auto want = static_cast<unsigned>(std::min<std::int64_t>(max - have, kAhead));
        const unsigned got = Read(ahead, want * sizeof(Char));
        const unsigned whole = got / sizeof(Char);
        const auto run = static_cast<unsigned>(line_run<Char, Char(0), Char(10)>(ahead, whole));
        const bool stopped = run < whole;
        const unsigned used = run + (stopped ? 1 : 0);
        std::memcpy(buffer + have, ahead, used * sizeof(Char));
        have += used;
        const unsigned surplus = got - used * static_cast<unsigned>(sizeof(Char));
        if (surplus != 0) move(-static_cast<long long>(surplus), STREAM_SEEK_CUR);
        if (stopped) {
            buffer[have] = 0;
            return static_cast<int>(have);
        }
        if (whole < want) break;
    }
    return read_stream_line(*this, buffer, max, have); // the end of the stream, or of the buffer
}

int CStream::ReadLineW(wchar_t* buffer, int max) { return read_line(buffer, max); }
int CStream::ReadLine(char* buffer, int max) { return read_line(buffer, max); }

} // namespace qzr

IXStream* new_StreamByOleStream(void* platformStream) {
    auto stream = qzr::PlatformStream::Share(static_cast<IStream*>(platformStream));
    if (!stream) return nullptr;
    return new (std::nothrow) qzr::COLEBasedXStream(std::move(stream));
}

void* Stream_GetOLEStream(IXStream* stream) {
    const auto* const ours = dynamic_cast<qzr::OleStream*>(stream);
    return ours != nullptr ? qzr::PlatformStream::Share(ours->platform()).Detach() : nullptr;
}
