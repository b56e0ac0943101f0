// The format in short. A file is a header of 512 bytes, padded to a sector, and sectors, numbered from 0
// behind it. The sector table has a number for each sector: the next one of its chain, or a mark from
// kFirstMark on. Its own sectors are listed in the header and, beyond 109, in a chain of list sectors. A
// second table does the same for the small sectors, which lie in the stream of the directory's first entry.
// The directory is a chain of 128-byte entries, which form a tree: left and right sibling, first child.
#include "stream/sector_tables.h"

#include "core/allocator.h"
#include "core/win_handle.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace qzr {

namespace {

constexpr unsigned kFirstMark = 0xFFFFFFFA; // no sector numbers from here on
constexpr unsigned kChainEnd = 0xFFFFFFFE;
constexpr unsigned kUnused = 0xFFFFFFFF; // no sector; in the directory no entry
constexpr unsigned kSmallLimit = 4096;   // shorter streams lie in small sectors
constexpr std::size_t kHeaderBytes = 512;
constexpr std::size_t kHeaderList = 109; // sectors of the sector table that the header names

unsigned word(const unsigned char* at) { return at[0] | at[1] << 8; }
unsigned dword(const unsigned char* at) { return word(at) | word(at + 2) << 16; }

using Bytes = Vector<unsigned char>;
using Table = Vector<unsigned>;

class TableReader {
public:
    explicit TableReader(FileHandle file) : file_(std::move(file)) {}

    bool safe() {
        Bytes header(kHeaderBytes);
        constexpr unsigned char kSignature[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
        if (!read(0, header) || std::memcmp(header.data(), kSignature, sizeof kSignature) != 0) return true;
        return takes_sizes(header) && takes_sector_table(header) && takes_directory(dword(&header[48])) &&
               takes_small_table(dword(&header[60])) && has_safe_entries();
    }

private:
    // A file of 16 MiB has its table in 256 places. An offset in the call itself would cost seven times both
    // of these.
    bool read(std::uint64_t position, Bytes& bytes) {
        LARGE_INTEGER place = {};
        place.QuadPart = static_cast<LONGLONG>(position);
        DWORD got = 0;
        return SetFilePointerEx(file_.get(), place, nullptr, FILE_BEGIN) != FALSE &&
               ReadFile(file_.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &got, nullptr) !=
                   FALSE &&
               got == bytes.size();
    }

    // What lies behind the end of a file that was cut short reads as free. The bytes live until the next
    // call.
    const Bytes& sector(unsigned number) {
        sector_.resize(std::size_t{1} << shift_);
        if (!read((std::uint64_t{number} + 1) << shift_, sector_)) sector_.assign(sector_.size(), 0xFF);
        return sector_;
    }

    bool takes_sizes(const Bytes& header) {
        shift_ = word(&header[30]);
        LARGE_INTEGER size = {};
        if ((shift_ != 9 && shift_ != 12) || word(&header[32]) != 6) return false;
        if (GetFileSizeEx(file_.get(), &size) == FALSE) return false;
        sectors_ = static_cast<std::uint64_t>(size.QuadPart) >> shift_;
        return true;
    }

    void append(Table& table, const Bytes& bytes) {
        static_assert(std::endian::native == std::endian::little, "as stored");
        const std::size_t before = table.size();
        table.resize(before + bytes.size() / sizeof(unsigned));
        std::memcpy(&table[before], bytes.data(), bytes.size());
    }

    // The sectors that the sector table lies in, then the table.
    bool takes_sector_table(const Bytes& header) {
        const std::size_t count = dword(&header[44]);
        if (count > sectors_) return false;
        Table list;
        for (std::size_t i = 0; i < kHeaderList; ++i)
            list.push_back(dword(&header[76 + 4 * i]));
        unsigned next = dword(&header[68]);
        for (unsigned left = dword(&header[72]); left != 0 && next < kFirstMark; --left) {
            if (next >= sectors_ || list.size() > sectors_) return false;
            append(list, sector(next));
            next = list.back();
            list.pop_back();
        }
        if (list.size() < count) return false;
        for (std::size_t i = 0; i < list.size(); ++i) {
            const bool unused = i >= count && list[i] == kUnused;
            if (!unused && list[i] >= sectors_) return false; // some look at those behind the count, too
            if (i < count) append(table_, sector(list[i]));
        }
        return true;
    }

    // Whether a chain comes to its end. More steps than there are numbers are a circle.
    static bool ends(const Table& table, unsigned first) {
        std::size_t steps = 0;
        unsigned at = first;
        while (at < table.size() && ++steps <= table.size())
            at = table[at];
        return at == kChainEnd;
    }

    // Of small sectors every number but one in a circle is noticed by all platforms.
    static bool small_chain_ends(const Table& table, unsigned first) {
        std::size_t steps = 0;
        for (unsigned at = first; at < table.size(); at = table[at])
            if (++steps > table.size()) return false;
        return true;
    }

    bool takes_directory(unsigned first) {
        if (!ends(table_, first)) return false;
        for (unsigned at = first; at < kFirstMark; at = table_[at]) {
            const Bytes& bytes = sector(at);
            directory_.insert(directory_.end(), bytes.begin(), bytes.end());
        }
        return !directory_.empty();
    }

    bool takes_small_table(unsigned first) {
        if (!ends(table_, first)) return false;
        for (unsigned at = first; at < kFirstMark; at = table_[at])
            append(small_table_, sector(at));
        return true;
    }

    // Walks the tree of the directory. An entry that is met twice is in a circle, or as good as in one.
    bool has_safe_entries() {
        constexpr std::size_t kEntryBytes = 128;
        const std::size_t count = directory_.size() / kEntryBytes;
        Vector<unsigned char> met(count, 0);
        Vector<unsigned> open = {0};
        while (!open.empty()) {
            const unsigned index = open.back();
            open.pop_back();
            if (index == kUnused) continue;
            if (index >= count || met[index] != 0) return false;
            met[index] = 1;
            const unsigned char* const entry = &directory_[index * kEntryBytes];
            constexpr unsigned char kStorage = 1, kStream = 2, kRoot = 5;
            const unsigned char kind = entry[66];
            if ((kind == kRoot) != (index == 0)) return false;
            if (kind != kRoot && kind != kStorage && kind != kStream) return false;
            if (kind != kStorage && !has_safe_chain(entry, kind == kRoot)) return false;
            if (kind != kStream) open.push_back(dword(entry + 76));
            open.push_back(dword(entry + 68));
            open.push_back(dword(entry + 72));
        }
        return true;
    }

    // The bytes of a stream or, in the root, the small sectors of all. The high half of a size means
    // something with large sectors only: old software left there whatever it had.
    bool has_safe_chain(const unsigned char* entry, bool root) const {
        const unsigned first = dword(entry + 116), size = dword(entry + 120);
        const unsigned size_high = shift_ == 9 ? 0 : dword(entry + 124);
        if (size == 0 && size_high == 0) return true;
        const bool small = !root && size < kSmallLimit;
        if (small && !small_chain_ends(small_table_, first)) return false;
        return (small && size_high == 0) || ends(table_, first);
    }

    FileHandle file_;
    Bytes sector_;
    unsigned shift_ = 0;        // a sector has 1 << shift_ bytes
    std::uint64_t sectors_ = 0; // in the file, the header counted
    Table table_, small_table_;
    Bytes directory_;
};

} // namespace

bool has_safe_tables(const wchar_t* path) {
    if (path == nullptr) return true;
    FileHandle file(CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return !file || TableReader(std::move(file)).safe();
}

} // namespace qzr
