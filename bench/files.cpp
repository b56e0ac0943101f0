// Files, beside the platform's calls on files that are opened in the same way.
#include "bench/ledger.h"
#include "bench/pieces.h"
#include "bench/temporary_folder.h"
#include "qzfile.h"
#include "qzref.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace bench {
namespace {

constexpr unsigned kPieces = 64 * 1024 * 1024 / kPiece;

// --- reading and writing from front to back --------------------------------------------------------------

void write_by_library(const std::wstring& path) {
    IXFile* const file = Fio_Open(path.c_str(), QZFILE_WRITE);
    write_pieces(kPieces, [file](const void* data, unsigned count) { file->Write(data, count); });
    file->Release();
}

void write_by_platform(const std::wstring& path) {
    const PlatformHandle file = create_for_writing(path);
    write_pieces(kPieces, [&file](const void* data, unsigned count) {
        DWORD written = 0;
        WriteFile(file.get(), data, count, &written, nullptr);
    });
}

unsigned long long read_by_library(const std::wstring& path) {
    const auto file = CQZRef<IXFile>::Adopt(Fio_Open(path.c_str(), QZFILE_READ));
    return read_pieces([&file](void* data, unsigned count) { return file->Read(data, count); });
}

unsigned long long read_by_platform(const std::wstring& path) {
    const PlatformHandle file = open_for_reading(path);
    return read_pieces([&file](void* data, unsigned count) {
        DWORD read = 0;
        ReadFile(file.get(), data, count, &read, nullptr);
        return read;
    });
}

// A folder with the file of pieces.
struct Pieces {
    Pieces() {
        write_by_platform(path);
        const PlatformHandle file(
            CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        FlushFileBuffers(file.get());
    }
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"pieces");
};

// One for all that only read, on the disk already: nothing is timed while the system still writes.
const Pieces& settled_pieces() {
    static const Pieces pieces;
    return pieces;
}

bool pieces_are_right() {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"pieces");
    write_by_library(path);
    if (read_by_platform(path) != sum_below(kPieces)) return false;
    write_by_platform(path);
    return read_by_library(path) == sum_below(kPieces);
}

void sequence_rows(Ledger& ledger) {
    ledger.row({"files", "read 64 MiB in 4 KiB pieces", "ReadFile", 1.2, pieces_are_right,
                [](State& state) {
                    const Pieces& pieces = settled_pieces();
                    for (auto _ : state)
                        DoNotOptimize(read_by_library(pieces.path));
                },
                [](State& state) {
                    const Pieces& pieces = settled_pieces();
                    for (auto _ : state)
                        DoNotOptimize(read_by_platform(pieces.path));
                }});
    ledger.row({"files", "write 64 MiB in 4 KiB pieces", "WriteFile", 1.6, pieces_are_right,
                [](State& state) {
                    const Pieces pieces;
                    for (auto _ : state)
                        write_by_library(pieces.path);
                },
                [](State& state) {
                    const Pieces pieces;
                    for (auto _ : state)
                        write_by_platform(pieces.path);
                }});
}

// --- reading here and there ------------------------------------------------------------------------------

constexpr unsigned kReads = 20'000;
constexpr unsigned kRead = 64;

std::vector<unsigned> places() {
    std::minstd_rand random(1);
    std::vector<unsigned> places(kReads);
    for (unsigned& place : places)
        place = random() % (kPieces * kPiece - kRead);
    return places;
}

// Views of equal size, each mapped when it is first needed and kept.
template <unsigned kView>
class KeptViews {
public:
    explicit KeptViews(const std::wstring& path)
        : file_(open_for_reading(path, FILE_FLAG_RANDOM_ACCESS)),
          mapping_(CreateFileMappingW(file_.get(), nullptr, PAGE_READONLY, 0, 0, nullptr)),
          views_(kPieces * kPiece / kView) {}
    ~KeptViews() {
        for (const char* const view : views_)
            if (view != nullptr) UnmapViewOfFile(view);
    }
    KeptViews(const KeptViews&) = delete;
    KeptViews& operator=(const KeptViews&) = delete;

    void read(unsigned place, char* buffer, unsigned count) {
        while (count != 0) {
            const unsigned offset = place % kView;
            const unsigned here = std::min(count, kView - offset);
            std::memcpy(buffer, view(place / kView) + offset, here);
            place += here;
            buffer += here;
            count -= here;
        }
    }

private:
    const char* view(unsigned index) {
        if (views_[index] == nullptr)
            views_[index] = static_cast<const char*>(
                MapViewOfFile(mapping_.get(), FILE_MAP_READ, 0, index * kView, kView));
        return views_[index];
    }

    PlatformHandle file_;
    PlatformHandle mapping_;
    std::vector<const char*> views_;
};

using SmallViews = KeptViews<128 << 10>;
using WholeView = KeptViews<kPieces * kPiece>;

class LibraryReads {
public:
    explicit LibraryReads(const std::wstring& path)
        : file_(CQZRef<IXFile>::Adopt(Fio_Open(path.c_str(), QZFILE_RANDOM))) {}
    void read(unsigned place, char* buffer, unsigned count) {
        file_->Seek(place, 0);
        file_->Read(buffer, count);
    }

private:
    CQZRef<IXFile> file_;
};

template <class Reader>
unsigned read_at_places(Reader& reader, const std::vector<unsigned>& places) {
    char buffer[kRead];
    unsigned sum = 0;
    for (const unsigned place : places) {
        reader.read(place, buffer, kRead);
        DoNotOptimize(buffer);
        sum += static_cast<unsigned char>(buffer[0]) + static_cast<unsigned char>(buffer[kRead - 1]);
    }
    return sum;
}

bool random_reads_are_right() {
    const Pieces& pieces = settled_pieces();
    LibraryReads library(pieces.path);
    SmallViews small(pieces.path);
    WholeView whole(pieces.path);
    const auto all = places();
    const unsigned sum = read_at_places(library, all);
    return sum == read_at_places(small, all) && sum == read_at_places(whole, all);
}

// With everything in memory, and every view mapped.
template <class Reader>
void read_open_file(State& state) {
    const Pieces& pieces = settled_pieces();
    const auto all = places();
    Reader reader(pieces.path);
    read_at_places(reader, all);
    for (auto _ : state)
        DoNotOptimize(read_at_places(reader, all));
}

template <class Reader>
void open_and_read(State& state) {
    const Pieces& pieces = settled_pieces();
    const auto all = places();
    for (auto _ : state) {
        Reader reader(pieces.path);
        DoNotOptimize(read_at_places(reader, all));
    }
}

void random_rows(Ledger& ledger) {
    ledger.row({"files", "20,000 reads of 64 bytes at random places of 64 MiB", "views that are kept mapped",
                1.3, random_reads_are_right, read_open_file<LibraryReads>, read_open_file<SmallViews>});
    ledger.row({"files", "open, read 20,000 times 64 bytes at random places, close",
                "one view of the whole file", 1.3, random_reads_are_right, open_and_read<LibraryReads>,
                open_and_read<WholeView>});
}

// --- lines -----------------------------------------------------------------------------------------------

constexpr unsigned kLines = 200'000;
constexpr int kLongest = 256;

struct Lines {
    Lines() {
        std::string text;
        for (unsigned i = 0; i < kLines; ++i)
            text += std::to_string(i) + std::string(10 + i % 50, 'l') + '\n';
        const PlatformHandle file = create_for_writing(path);
        DWORD written = 0;
        WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    }
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"lines");
};

// What the reading of lines came to: their number, and that of all characters before the line feeds.
struct Count {
    unsigned long long lines = 0;
    unsigned long long characters = 0;
    bool operator==(const Count&) const = default;
};

Count lines_by_library(const std::wstring& path) {
    const auto file = CQZRef<IXFile>::Adopt(Fio_Open(path.c_str(), QZFILE_READ));
    char line[kLongest + 2];
    Count count;
    for (const unsigned size = file->GetSize(); file->GetPosition() != size; ++count.lines) {
        count.characters += static_cast<unsigned>(file->ReadLine(line, kLongest));
        DoNotOptimize(line);
    }
    return count;
}

Count lines_by_runtime(const std::wstring& path) {
    FILE* const file = _wfopen(path.c_str(), L"rb");
    char line[kLongest + 2];
    Count count;
    for (; std::fgets(line, kLongest, file) != nullptr; ++count.lines) {
        count.characters += std::strlen(line) - 1;
        DoNotOptimize(line);
    }
    std::fclose(file);
    return count;
}

void line_row(Ledger& ledger) {
    ledger.row({"files", "200,000 lines", "fgets", 1.8,
                [] {
                    const Lines lines;
                    const Count count = lines_by_library(lines.path);
                    return count.lines == kLines && count == lines_by_runtime(lines.path);
                },
                [](State& state) {
                    const Lines lines;
                    for (auto _ : state)
                        DoNotOptimize(lines_by_library(lines.path).characters);
                },
                [](State& state) {
                    const Lines lines;
                    for (auto _ : state)
                        DoNotOptimize(lines_by_runtime(lines.path).characters);
                }});
}

// --- replacing a document --------------------------------------------------------------------------------

constexpr unsigned kReplacements = 50;

// A folder with a document that is replaced again and again.
struct Document {
    Document() { write(0); }
    void write(unsigned number) const {
        const auto piece = numbered<kPiece>(number);
        DWORD written = 0;
        WriteFile(create_for_writing(path).get(), piece.data(), kPiece, &written, nullptr);
    }
    void replace_by_library(unsigned number) const {
        const auto piece = numbered<kPiece>(number);
        const auto file = CQZRef<IXOutFile>::Adopt(Fio_OpenOut(path.c_str(), 0));
        file->Write(piece.data(), kPiece);
        file->Commit();
    }
    bool replace_by_platform(unsigned number) const {
        const auto piece = numbered<kPiece>(number);
        return replace_bare(folder, path, {piece.data(), kPiece});
    }
    // The number in the document, when it is all that the folder holds.
    unsigned number() const {
        std::array<char, kPiece> piece = {};
        DWORD read = 0;
        ReadFile(open_for_reading(path).get(), piece.data(), kPiece, &read, nullptr);
        const std::filesystem::directory_iterator entries(folder.path());
        return read == kPiece && std::distance(begin(entries), end(entries)) == 1 ? number_of(piece.data())
                                                                                  : 0;
    }
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"document");
};

void replace_row(Ledger& ledger) {
    ledger.row({"files", "replace a 4 KiB document safely, 50 times", "the bare sequence of platform calls",
                1.2,
                [] {
                    const Document document;
                    document.replace_by_library(1);
                    const bool first = document.number() == 1;
                    return first && document.replace_by_platform(2) && document.number() == 2;
                },
                [](State& state) {
                    const Document document;
                    for (auto _ : state)
                        for (unsigned i = 0; i < kReplacements; ++i)
                            document.replace_by_library(i);
                },
                [](State& state) {
                    const Document document;
                    for (auto _ : state)
                        for (unsigned i = 0; i < kReplacements; ++i)
                            DoNotOptimize(document.replace_by_platform(i));
                }});
}

} // namespace

void file_rows(Ledger& ledger) {
    sequence_rows(ledger);
    random_rows(ledger);
    line_row(ledger);
    replace_row(ledger);
}

} // namespace bench
