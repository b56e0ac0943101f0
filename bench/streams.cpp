// Streams in memory.
#include "bench/ledger.h"
#include "bench/names.h"
#include "qzref.h"
#include "qzstream.h"
#include "qzvariant.h"

#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <vector>
#include <windows.h>

#include <objbase.h>

namespace bench {
namespace {

using Stream = CQZRef<IXStream>;

constexpr unsigned kPiece = 4096;
constexpr unsigned kPieces = 64 * 1024 * 1024 / kPiece;
constexpr unsigned kDoubles = 8'000'000;

struct ReleasePlatform {
    void operator()(IStream* stream) const { stream->Release(); }
};
using PlatformStream = std::unique_ptr<IStream, ReleasePlatform>;

// The platform's own stream in memory; sized first, since it grows by copying.
PlatformStream platform_stream(unsigned long long size) {
    IStream* stream = nullptr;
    CreateStreamOnHGlobal(nullptr, TRUE, &stream);
    if (size != 0) stream->SetSize(ULARGE_INTEGER{.QuadPart = size});
    return PlatformStream(stream);
}

Stream memory_stream() { return Stream::Adopt(new_StreamOnMemory()); }

std::array<char, kPiece> piece(unsigned i) {
    std::array<char, kPiece> bytes;
    bytes.fill(static_cast<char>(i));
    return bytes;
}

Stream filled_stream() {
    Stream stream = memory_stream();
    for (unsigned i = 0; i < kPieces; ++i)
        stream->Write(piece(i).data(), kPiece);
    return stream;
}

bool keeps_pieces() {
    const Stream stream = filled_stream();
    std::array<char, kPiece> read;
    stream->Seek(12345 * kPiece, 0);
    return stream->Read(read.data(), kPiece) == kPiece && read == piece(12345) &&
           stream->GetSize() == kPieces * kPiece;
}

void piece_rows(Ledger& ledger) {
    ledger.row({"memory streams", "write 64 MiB in pieces of 4 KiB", "platform memory stream, sized first",
                1.05, keeps_pieces,
                [](State& state) {
                    const auto bytes = piece(7);
                    for (auto _ : state) {
                        const Stream stream = memory_stream();
                        for (unsigned i = 0; i < kPieces; ++i)
                            stream->Write(bytes.data(), kPiece);
                    }
                },
                [](State& state) {
                    const auto bytes = piece(7);
                    for (auto _ : state) {
                        const PlatformStream stream = platform_stream(kPieces * kPiece);
                        for (unsigned i = 0; i < kPieces; ++i)
                            stream->Write(bytes.data(), kPiece, nullptr);
                    }
                }});
    ledger.row({"memory streams", "read 64 MiB in pieces of 4 KiB", "memcpy", 1.2, keeps_pieces,
                [](State& state) {
                    const Stream stream = filled_stream();
                    std::array<char, kPiece> bytes;
                    for (auto _ : state) {
                        stream->Seek(0, 0);
                        for (unsigned i = 0; i < kPieces; ++i) {
                            stream->Read(bytes.data(), kPiece);
                            DoNotOptimize(&bytes);
                        }
                    }
                },
                [](State& state) {
                    const std::vector<char> source(kPieces * kPiece, 'x');
                    std::array<char, kPiece> bytes;
                    for (auto _ : state)
                        for (unsigned i = 0; i < kPieces; ++i) {
                            std::memcpy(bytes.data(), source.data() + i * kPiece, kPiece);
                            DoNotOptimize(&bytes);
                        }
                }});
}

void double_rows(Ledger& ledger) {
    const auto check = [] {
        const Stream stream = memory_stream();
        stream->WriteDouble(0.1);
        stream->WriteDouble(-2.5);
        stream->Seek(0, 0);
        return stream->ReadDouble() == 0.1 && stream->ReadDouble() == -2.5;
    };
    ledger.row({"memory streams", "write 8 M doubles", "platform memory stream, sized first", 0.2, check,
                [](State& state) {
                    for (auto _ : state) {
                        const Stream stream = memory_stream();
                        for (unsigned i = 0; i < kDoubles; ++i)
                            stream->WriteDouble(i);
                    }
                },
                [](State& state) {
                    for (auto _ : state) {
                        const PlatformStream stream = platform_stream(8ULL * kDoubles);
                        for (unsigned i = 0; i < kDoubles; ++i) {
                            const double value = i;
                            stream->Write(&value, sizeof value, nullptr);
                        }
                    }
                }});
    ledger.row({"memory streams", "read 8 M doubles", "platform memory stream", 0.18, check,
                [](State& state) {
                    const Stream stream = memory_stream();
                    for (unsigned i = 0; i < kDoubles; ++i)
                        stream->WriteDouble(i);
                    for (auto _ : state) {
                        stream->Seek(0, 0);
                        for (unsigned i = 0; i < kDoubles; ++i)
                            DoNotOptimize(stream->ReadDouble());
                    }
                },
                [](State& state) {
                    const PlatformStream stream = platform_stream(8ULL * kDoubles);
                    double value = 0;
                    for (auto _ : state) {
                        stream->Seek({}, STREAM_SEEK_SET, nullptr);
                        for (unsigned i = 0; i < kDoubles; ++i) {
                            stream->Read(&value, sizeof value, nullptr);
                            DoNotOptimize(value);
                        }
                    }
                }});
}

constexpr unsigned kVariants = 100'000;

std::vector<CQZVariant> variants() {
    std::vector<CQZVariant> all;
    all.reserve(kVariants);
    for (unsigned i = 0; i < kVariants; i += 4) {
        all.emplace_back(static_cast<int>(i));
        all.emplace_back(i * 0.5);
        all.emplace_back(("text number " + std::to_string(i)).c_str());
        all.emplace_back(tagRECT{0, 1, 2, static_cast<int>(i)});
    }
    return all;
}

// The same encoding of the same four types, by hand.
struct HandWriter {
    std::vector<char> bytes;
    void put(const void* data, std::size_t size) {
        const auto* p = static_cast<const char*>(data);
        bytes.insert(bytes.end(), p, p + size);
    }
    void put(const CQZVariant& v) {
        put(&v.vt, sizeof v.vt);
        switch (v.vt) {
        case QZVT_INT:
            put(&v.intVal, sizeof v.intVal);
            break;
        case QZVT_DOUBLE:
            put(&v.doubleVal, sizeof v.doubleVal);
            break;
        case QZVT_RECT:
            put(&v.rectVal, sizeof v.rectVal);
            break;
        default: {
            const auto size = static_cast<unsigned>(std::strlen(v.pszVal) + 1);
            put(&size, sizeof size);
            put(v.pszVal, size);
        }
        }
    }
};

// Reads into values that own their texts, as the library's do.
struct HandReader {
    const char* at;
    template <class T>
    T take() {
        T value;
        std::memcpy(&value, at, sizeof value);
        at += sizeof value;
        return value;
    }
    CQZVariant read() {
        switch (take<unsigned short>()) {
        case QZVT_INT:
            return {take<int>()};
        case QZVT_DOUBLE:
            return {take<double>()};
        case QZVT_RECT:
            return {take<tagRECT>()};
        default: {
            const auto size = take<unsigned>();
            const char* text = at;
            at += size;
            return {text};
        }
        }
    }
};

void variant_row(Ledger& ledger) {
    ledger.row({"memory streams", "100,000 mixed variants written and read",
                "the same form by hand over a vector", 1.4,
                [] {
                    HandWriter writer;
                    const Stream stream = memory_stream();
                    for (const CQZVariant& v : variants()) {
                        writer.put(v);
                        stream->WriteVariant(&v);
                    }
                    std::vector<char> bytes(stream->GetSize());
                    stream->Seek(0, 0);
                    stream->Read(bytes.data(), stream->GetSize());
                    HandReader reader{bytes.data()};
                    return bytes == writer.bytes && reader.read() == variants()[0] &&
                           reader.read() == variants()[1];
                },
                [](State& state) {
                    const std::vector<CQZVariant> all = variants();
                    for (auto _ : state) {
                        const Stream stream = memory_stream();
                        for (const CQZVariant& v : all)
                            stream->WriteVariant(&v);
                        stream->Seek(0, 0);
                        CQZVariant read;
                        for (unsigned i = 0; i < kVariants; ++i) {
                            stream->ReadVariant(&read);
                            DoNotOptimize(&read);
                        }
                    }
                },
                [](State& state) {
                    const std::vector<CQZVariant> all = variants();
                    for (auto _ : state) {
                        HandWriter writer;
                        for (const CQZVariant& v : all)
                            writer.put(v);
                        HandReader reader{writer.bytes.data()};
                        for (unsigned i = 0; i < kVariants; ++i) {
                            const CQZVariant read = reader.read();
                            DoNotOptimize(&read);
                        }
                    }
                }});
}

} // namespace

void stream_rows(Ledger& ledger) {
    piece_rows(ledger);
    double_rows(ledger);
    variant_row(ledger);
}

} // namespace bench
