// The format in short. A file is a header of 512 bytes, padded to a sector, and sectors, numbered from 0
// behind it. The sector table has a number for each sector: the next one of its chain, or a mark from
// kFirstMark on. Its own sectors are listed in the header and, beyond 109, in a chain of list sectors. A
// second table does the same for the small sectors, which lie in the stream of the directory's first entry.
// The directory is a chain of 128-byte entries, which form a tree: left and right sibling, first child.
#include "stream/sector_tables.h"

#include "core/win_handle.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace qzr {

namespace {

constexpr unsigned kFirstMark = 0xFFFFFFFA; // no sector numbers from here on
constexpr unsigned kChainEnd = 0xFFFFFFFE;
constexpr unsigned kUnused = 0xFFFFFFFF; // no sector; in the directory no entry
constexpr unsigned kTableSector = 0xFFFFFFFD, kListSector = 0xFFFFFFFC;
constexpr unsigned kSmallLimit = 4096; // shorter streams lie in small sectors
constexpr unsigned kSmallShift = 6;    // of 64 bytes
constexpr std::size_t kHeaderBytes = 512;
constexpr std::size_t kHeaderList = 109; // sectors of the sector table that the header names

unsigned word(const unsigned char* at) { return at[0] | at[1] << 8; }
unsigned dword(const unsigned char* at) { return word(at) | word(at + 2) << 16; }

using Bytes = Vector<unsigned char>;
using Table = Vector<unsigned>;
using Marks = Vector<TableFindings::OddMark>;

// For each number of a table the length of the chain from there on. A chain is followed once, up to where it
// meets one that was followed before: streams may share the rest of theirs.
class Chains {
public:
    // Strict chains end with the mark for it; others where a number leads out of the table, which all
    // platforms notice.
    explicit Chains(bool strict) : strict_(strict) {}

    void set_table(Table table) {
        table_ = std::move(table);
        lengths_.assign(table_.size(), 0);
        highest_.assign(strict_ ? 0 : table_.size(), 0);
    }

    // Sectors from one on; 0 when there are none, or they run in a circle or do not end as they should.
    unsigned length(unsigned first) {
        if (first >= table_.size()) return 0;
        follow(first);
        return lengths_[first] == kEndless ? 0 : lengths_[first];
    }

    // The highest number in a chain that has a length; kept for chains that are not strict.
    unsigned highest(unsigned first) const { return highest_[first]; }

    unsigned next(unsigned number) const { return table_[number]; }
    bool was_followed(unsigned number) const { return number < table_.size() && lengths_[number] != 0; }
    bool is_free(unsigned number) const { return number < table_.size() && table_[number] == kUnused; }

private:
    static constexpr unsigned kEndless = 0xFFFFFFFF, kOnTheWay = 0xFFFFFFFE;

    void follow(unsigned first) {
        way_.clear();
        unsigned at = first;
        for (; at < table_.size() && lengths_[at] == 0; at = table_[at]) {
            lengths_[at] = kOnTheWay;
            way_.push_back(at);
        }
        unsigned length = 0, highest = 0;
        if (at < table_.size()) {
            length = lengths_[at] == kOnTheWay ? kEndless : lengths_[at];
            highest = strict_ ? 0 : highest_[at];
        } else if (strict_ && at != kChainEnd) {
            length = kEndless;
        }
        for (; !way_.empty(); way_.pop_back()) {
            const unsigned number = way_.back();
            lengths_[number] = length == kEndless ? kEndless : ++length;
            if (!strict_) highest_[number] = highest = std::max(highest, number);
        }
    }

    bool strict_;
    Table table_, lengths_, highest_, way_;
};

class TableReader {
public:
    explicit TableReader(TableBytes& bytes) : bytes_(bytes), size_(bytes.size()) {}

    TableFindings look() {
        Bytes header(kHeaderBytes);
        constexpr unsigned char kSignature[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
        if (bytes_.read(0, header.data(), kHeaderBytes) == kHeaderBytes &&
            std::memcmp(header.data(), kSignature, sizeof kSignature) == 0)
            found_.safe = takes_sizes(header) && takes_sector_table(header) &&
                          takes_directory(dword(&header[48])) && takes_small_table(dword(&header[60])) &&
                          has_safe_entries();
        found_.mendable = std::none_of(found_.odd_marks.begin(), found_.odd_marks.end(),
                                       [this](const auto& mark) { return lies_in_chain(mark.position); });
        return std::move(found_);
    }

private:
    std::uint64_t position_of(unsigned sector) const { return (std::uint64_t{sector} + 1) << shift_; }

    bool lies_in_chain(std::uint64_t position) const {
        return position >> shift_ != 0 &&
               chains_.was_followed(static_cast<unsigned>((position >> shift_) - 1));
    }

    bool present(unsigned sector) const { return sector < kFirstMark && position_of(sector) < size_; }

    // What lies behind the end of a file counts as zero where its last sector is not full, as the platform
    // has it, and as free where there is no sector. The bytes live until the next call.
    const Bytes& sector(unsigned number) {
        sector_.assign(std::size_t{1} << shift_, present(number) ? 0 : 0xFF);
        if (present(number)) bytes_.read(position_of(number), sector_.data(), sector_.size());
        return sector_;
    }

    bool takes_sizes(const Bytes& header) {
        shift_ = word(&header[30]);
        return (shift_ == 9 || shift_ == 12) && word(&header[32]) == 6;
    }

    static void append(Table& table, const Bytes& bytes) {
        static_assert(std::endian::native == std::endian::little, "as stored");
        const std::size_t before = table.size();
        table.resize(before + bytes.size() / sizeof(unsigned));
        std::memcpy(&table[before], bytes.data(), bytes.size());
    }

    // The sectors that the sector table lies in, then the table. The count may be larger than what is listed:
    // a commit that was interrupted left it so. What is listed behind it would be taken for a part of the
    // table as soon as the file grows.
    bool takes_sector_table(const Bytes& header) {
        const std::size_t count = dword(&header[44]);
        Table list, list_sectors;
        Vector<std::uint64_t> places;
        if (!takes_list(header, list, places, list_sectors)) return false;
        Table table;
        for (std::size_t i = 0; i < list.size(); ++i) {
            if (i < count)
                append(table, sector(list[i]));
            else if (list[i] < kFirstMark)
                return false;
            else if (list[i] != kUnused)
                found_.odd_marks.push_back({places[i], kUnused});
        }
        chains_.set_table(std::move(table));
        for (std::size_t i = 0; i < list.size() && i < count; ++i)
            keep_sector(list[i], kTableSector, list);
        for (const unsigned number : list_sectors)
            keep_sector(number, kListSector, list);
        return true;
    }

    // Notes when a sector of the table, or of its list, counts as free.
    void keep_sector(unsigned number, unsigned mark, const Table& list) {
        if (!present(number) || !chains_.is_free(number)) return;
        const unsigned numbers = 1u << (shift_ - 2); // in a sector
        const unsigned holder = list[number / numbers];
        if (present(holder))
            found_.odd_marks.push_back({position_of(holder) + number % numbers * std::uint64_t{4}, mark});
    }

    bool takes_list(const Bytes& header, Table& list, Vector<std::uint64_t>& places, Table& list_sectors) {
        for (std::size_t i = 0; i < kHeaderList; ++i)
            list_number(header, 76 + 4 * i, 0, list, places);
        const std::size_t most = static_cast<std::size_t>(size_ >> shift_) + 2 * kHeaderList;
        unsigned next = dword(&header[68]);
        for (unsigned left = dword(&header[72]); left != 0 && next < kFirstMark; --left) {
            if (!present(next) || list.size() > most) return false; // in a circle at the latest
            const Bytes& bytes = sector(next);
            list_sectors.push_back(next);
            for (std::size_t at = 0; at + 4 < bytes.size(); at += 4)
                list_number(bytes, at, position_of(next), list, places);
            next = dword(&bytes[bytes.size() - 4]);
        }
        return true;
    }

    static void list_number(const Bytes& bytes, std::size_t at, std::uint64_t base, Table& list,
                            Vector<std::uint64_t>& places) {
        list.push_back(dword(&bytes[at]));
        places.push_back(base + at);
    }

    // Where a sector of it is missing some platforms search without end for a place of a new entry.
    bool takes_directory(unsigned first) {
        if (chains_.length(first) == 0) return false;
        for (unsigned at = first; at < kFirstMark; at = chains_.next(at)) {
            if (!present(at)) return false;
            const Bytes& bytes = sector(at);
            directory_.insert(directory_.end(), bytes.begin(), bytes.end());
        }
        return true;
    }

    bool takes_small_table(unsigned first) {
        Table table;
        if (first != kChainEnd && chains_.length(first) == 0) return false;
        for (unsigned at = first; at < kFirstMark; at = chains_.next(at))
            append(table, sector(at));
        small_chains_.set_table(std::move(table));
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
            if (kind != kStorage && !holds_its_bytes(entry, kind == kRoot)) return false;
            if (kind != kStream) open.push_back(dword(entry + 76));
            open.push_back(dword(entry + 68));
            open.push_back(dword(entry + 72));
        }
        return true;
    }

    // Whether a stream or, in the root, the small sectors of all have as many bytes as the entry claims. The
    // high half of a size means something with large sectors only: old software left there whatever it had.
    bool holds_its_bytes(const unsigned char* entry, bool root) {
        const unsigned first = dword(entry + 116);
        const std::uint64_t high = shift_ == 9 ? 0 : dword(entry + 124);
        const std::uint64_t size = high << 32 | dword(entry + 120);
        if (root) small_bytes_ = size;
        if (size == 0) return true;
        if (root || size >= kSmallLimit) return std::uint64_t{chains_.length(first)} << shift_ >= size;
        return std::uint64_t{small_chains_.length(first)} << kSmallShift >= size &&
               std::uint64_t{small_chains_.highest(first)} << kSmallShift < small_bytes_;
    }

    TableBytes& bytes_;
    const std::uint64_t size_; // of the file
    Bytes sector_;
    unsigned shift_ = 0; // a sector has 1 << shift_ bytes
    Chains chains_{true}, small_chains_{false};
    std::uint64_t small_bytes_ = 0; // of all small sectors, as the root has it
    Bytes directory_;
    TableFindings found_;
};

// A file of 16 MiB has its table in 256 places. An offset in the call itself would cost seven times both of
// these.
class FileBytes final : public TableBytes {
public:
    explicit FileBytes(HANDLE file) : file_(file) {}

    std::uint64_t size() override {
        LARGE_INTEGER size = {};
        return GetFileSizeEx(file_, &size) != FALSE ? static_cast<std::uint64_t>(size.QuadPart) : 0;
    }

    std::size_t read(std::uint64_t position, unsigned char* buffer, std::size_t count) override {
        DWORD got = 0;
        return seek(position) && ReadFile(file_, buffer, static_cast<DWORD>(count), &got, nullptr) != FALSE
                   ? got
                   : 0;
    }

    // Neighbours go together. Marks are in the order of their positions.
    bool mend(const Marks& marks) {
        Table run;
        for (std::size_t i = 0; i < marks.size(); i += run.size()) {
            run.clear();
            while (i + run.size() < marks.size() &&
                   marks[i + run.size()].position == marks[i].position + run.size() * sizeof(unsigned))
                run.push_back(marks[i + run.size()].should_be);
            if (!write(marks[i].position, run)) return false;
        }
        return true;
    }

private:
    bool write(std::uint64_t position, const Table& numbers) {
        const auto count = static_cast<DWORD>(numbers.size() * sizeof(unsigned));
        DWORD written = 0;
        return seek(position) && WriteFile(file_, numbers.data(), count, &written, nullptr) != FALSE &&
               written == count;
    }

    bool seek(std::uint64_t position) {
        LARGE_INTEGER place = {};
        place.QuadPart = static_cast<LONGLONG>(position);
        return SetFilePointerEx(file_, place, nullptr, FILE_BEGIN) != FALSE;
    }

    HANDLE file_;
};

// A file as it is when its marks are the usual ones.
class MendedBytes final : public TableBytes {
public:
    MendedBytes(FileBytes& file, const Marks& marks) : file_(file), marks_(marks) {}

    std::uint64_t size() override { return file_.size(); }

    std::size_t read(std::uint64_t position, unsigned char* buffer, std::size_t count) override {
        const std::size_t got = file_.read(position, buffer, count);
        const auto before = [](const auto& mark, std::uint64_t at) { return mark.position < at; };
        auto mark = std::lower_bound(marks_.begin(), marks_.end(), position, before);
        for (; mark != marks_.end() && mark->position + sizeof mark->should_be <= position + got; ++mark)
            std::memcpy(buffer + (mark->position - position), &mark->should_be, sizeof mark->should_be);
        return got;
    }

private:
    FileBytes& file_;
    const Marks& marks_;
};

FileHandle open_file(const wchar_t* path, DWORD access, DWORD shared) {
    return FileHandle(
        CreateFileW(path, access, shared, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

// Looks again, now that nobody else writes. In a crafted file a list of table sectors may also be a sector of
// the table or of a stream; the marks are only written where they change nothing else.
HRESULT mend(HANDLE handle) {
    FileBytes file(handle);
    TableFindings found = look_at_tables(file);
    Marks& marks = found.odd_marks;
    std::sort(marks.begin(), marks.end(),
              [](const auto& a, const auto& b) { return a.position < b.position; });
    MendedBytes mended(file, marks);
    if (!marks.empty() && found.safe) {
        const TableFindings after = look_at_tables(mended);
        found.safe = found.mendable && after.safe && after.odd_marks.empty();
    }
    if (!found.safe) return STG_E_DOCFILECORRUPT;
    return file.mend(marks) ? S_OK : STG_E_ACCESSDENIED;
}

} // namespace

TableFindings look_at_tables(TableBytes& bytes) { return TableReader(bytes).look(); }

HRESULT make_tables_safe(const wchar_t* path, bool writable) {
    if (path == nullptr) return S_OK;
    TableFindings found;
    constexpr DWORD kAnyone = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    if (const FileHandle file = open_file(path, GENERIC_READ, kAnyone)) {
        FileBytes bytes(file.get());
        found = look_at_tables(bytes);
    }
    if (!found.safe) return STG_E_DOCFILECORRUPT;
    if (!writable || found.odd_marks.empty()) return S_OK;
    const FileHandle file = open_file(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ);
    return file ? mend(file.get()) : STG_E_ACCESSDENIED;
}

} // namespace qzr
