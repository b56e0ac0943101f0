// Compound files on the disk, beside the same calls to the platform's storages.
#include "bench/ledger.h"
#include "bench/pieces.h"
#include "bench/temporary_folder.h"
#include "qzref.h"
#include "qzstream.h"

#include <array>
#include <string>
#include <vector>

#include <objbase.h>

namespace bench {
namespace {

constexpr unsigned kStreams = 1000;
constexpr unsigned kSmall = 100;
constexpr unsigned kPieces = 16 * 1024 * 1024 / kPiece;

// The names of the streams, narrow for the library and wide for the platform.
struct Names {
    Names() {
        for (unsigned i = 0; i < kStreams; ++i) {
            narrow.push_back("stream " + std::to_string(i));
            wide.emplace_back(narrow.back().begin(), narrow.back().end());
        }
    }
    std::vector<std::string> narrow;
    std::vector<std::wstring> wide;
};

struct LibrarySide {
    using Storage = CQZRef<IXStorage>;
    using Stream = CQZRef<IXStream>;

    static Storage create(const std::wstring& path) { return Storage::Adopt(new_Storage(path.c_str(), 0)); }
    static Storage open(const std::wstring& path) { return Storage::Adopt(open_Storage(path.c_str(), 1)); }
    static Stream create_stream(const Storage& storage, const Names& names, unsigned i) {
        return Stream::Adopt(storage->CreateStream(names.narrow[i].c_str()));
    }
    static Stream open_stream(const Storage& storage, const Names& names, unsigned i) {
        return Stream::Adopt(storage->OpenStream(names.narrow[i].c_str()));
    }
    static void commit(const Storage& storage) { storage->Commit(); }
    static void write(const Stream& stream, const void* data, unsigned count) { stream->Write(data, count); }
    static unsigned read(const Stream& stream, void* data, unsigned count) {
        return stream->Read(data, count);
    }
};

struct PlatformSide {
    struct Release {
        void operator()(IUnknown* object) const { object->Release(); }
    };
    using Storage = std::unique_ptr<IStorage, Release>;
    using Stream = std::unique_ptr<IStream, Release>;
    static constexpr DWORD kWrite = STGM_READWRITE | STGM_SHARE_EXCLUSIVE | STGM_CREATE;
    static constexpr DWORD kRead = STGM_READ | STGM_SHARE_EXCLUSIVE;

    static Storage create(const std::wstring& path) {
        IStorage* storage = nullptr;
        StgCreateDocfile(path.c_str(), kWrite, 0, &storage);
        return Storage(storage);
    }
    static Storage open(const std::wstring& path) {
        IStorage* storage = nullptr;
        StgOpenStorage(path.c_str(), nullptr, kRead, nullptr, 0, &storage);
        return Storage(storage);
    }
    static Stream create_stream(const Storage& storage, const Names& names, unsigned i) {
        IStream* stream = nullptr;
        storage->CreateStream(names.wide[i].c_str(), kWrite, 0, 0, &stream);
        return Stream(stream);
    }
    static Stream open_stream(const Storage& storage, const Names& names, unsigned i) {
        IStream* stream = nullptr;
        storage->OpenStream(names.wide[i].c_str(), nullptr, kRead, 0, &stream);
        return Stream(stream);
    }
    static void commit(const Storage& storage) { storage->Commit(STGC_DEFAULT); }
    static void write(const Stream& stream, const void* data, unsigned count) {
        stream->Write(data, count, nullptr);
    }
    static unsigned read(const Stream& stream, void* data, unsigned count) {
        ULONG got = 0;
        stream->Read(data, count, &got);
        return got;
    }
};

// A folder for the compound file.
struct Place {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"storage");
    const Names names;
};

template <class Side>
void write_streams(const Place& place) {
    const auto storage = Side::create(place.path);
    for (unsigned i = 0; i < kStreams; ++i)
        Side::write(Side::create_stream(storage, place.names, i), numbered<kSmall>(i).data(), kSmall);
    Side::commit(storage);
}

template <class Side>
unsigned long long read_streams(const Place& place) {
    const auto storage = Side::open(place.path);
    unsigned long long sum = 0;
    for (unsigned i = 0; i < kStreams; ++i) {
        std::array<char, kSmall> bytes = {};
        if (Side::read(Side::open_stream(storage, place.names, i), bytes.data(), kSmall) != kSmall) return 0;
        sum += number_of(bytes.data());
    }
    return sum;
}

template <class Side>
void write_large(const Place& place) {
    const auto storage = Side::create(place.path);
    const auto stream = Side::create_stream(storage, place.names, 0);
    write_pieces(kPieces, [&stream](const void* data, unsigned count) { Side::write(stream, data, count); });
    Side::commit(storage);
}

template <class Side>
unsigned long long read_large(const Place& place) {
    const auto storage = Side::open(place.path);
    const auto stream = Side::open_stream(storage, place.names, 0);
    return read_pieces([&stream](void* data, unsigned count) { return Side::read(stream, data, count); });
}

// What one side wrote the other reads.
bool streams_are_right() {
    const Place place;
    write_streams<LibrarySide>(place);
    if (read_streams<PlatformSide>(place) != sum_below(kStreams)) return false;
    write_streams<PlatformSide>(place);
    return read_streams<LibrarySide>(place) == sum_below(kStreams);
}

bool large_is_right() {
    const Place place;
    write_large<LibrarySide>(place);
    if (read_large<PlatformSide>(place) != sum_below(kPieces)) return false;
    write_large<PlatformSide>(place);
    return read_large<LibrarySide>(place) == sum_below(kPieces);
}

template <auto Write>
void time_writing(State& state) {
    const Place place;
    for (auto _ : state)
        Write(place);
}

// One for both sides, which only read.
template <auto Write>
const Place& written() {
    static const Place place;
    static const bool done = (Write(place), true);
    DoNotOptimize(done);
    return place;
}

template <auto Write, auto Read>
void time_reading(State& state) {
    const Place& place = written<Write>();
    for (auto _ : state)
        DoNotOptimize(Read(place));
}

} // namespace

void storage_rows(Ledger& ledger) {
    using Library = LibrarySide;
    using Platform = PlatformSide;
    ledger.row({"storages", "1000 small streams, create and commit", "IStorage, IStream", 1.05,
                streams_are_right, time_writing<write_streams<Library>>,
                time_writing<write_streams<Platform>>});
    ledger.row({"storages", "1000 small streams, read back", "IStorage, IStream", 1.05, streams_are_right,
                time_reading<write_streams<Platform>, read_streams<Library>>,
                time_reading<write_streams<Platform>, read_streams<Platform>>});
    ledger.row({"storages", "stream of 16 MiB in 4 KiB pieces, write", "IStorage, IStream", 1.05,
                large_is_right, time_writing<write_large<Library>>, time_writing<write_large<Platform>>});
    ledger.row({"storages", "stream of 16 MiB in 4 KiB pieces, read", "IStorage, IStream", 1.05,
                large_is_right, time_reading<write_large<Platform>, read_large<Library>>,
                time_reading<write_large<Platform>, read_large<Platform>>});
}

} // namespace bench
