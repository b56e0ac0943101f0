#include "system/recovery.h"

#include "system/failure.h"
#include "system/files.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <cwctype>
#include <fcntl.h>
#include <fstream>
#include <io.h>
#include <share.h>

namespace tool {

namespace {

namespace fs = std::filesystem;

/// The end of a temporary file of the library's that is not finished, or was only just: docs/commit.md.
struct UnfinishedMark {
    static constexpr char kName[17] = "QZR-UNFINISHED-1";
    static constexpr std::uint64_t kNotWhole = ~std::uint64_t{0};

    char name[16];
    std::uint64_t end;        // the size of the file with the mark
    std::uint64_t whole_size; // of the document, once all of it is written
};
static_assert(sizeof(UnfinishedMark) == 32, "as stored, little-endian");

/// The library's temporary files: three letters, the system's number, an extension.
bool is_temporary_name(const fs::path& path) {
    std::wstring name = path.filename().wstring();
    std::transform(name.begin(), name.end(), name.begin(),
                   [](wchar_t c) { return static_cast<wchar_t>(std::towlower(c)); });
    if (!name.starts_with(L"qzp") || !name.ends_with(L".tmp") || name.size() <= 7) return false;
    return std::all_of(name.begin() + 3, name.end() - 4, [](wchar_t c) { return std::iswxdigit(c) != 0; });
}

Leftover examine(const fs::path& path) {
    std::error_code ignored;
    Leftover found = {path, Leftover::in_use, 0, false, fs::last_write_time(path, ignored)};
    int number = -1;
    _wsopen_s(&number, path.c_str(), _O_RDONLY | _O_BINARY, _SH_DENYRW, 0);
    if (number < 0) return found;
    const long long size = _filelengthi64(number);
    UnfinishedMark mark = {};
    bool marked = false;
    if (size >= static_cast<long long>(sizeof mark)) {
        _lseeki64(number, size - static_cast<long long>(sizeof mark), SEEK_SET);
        marked = _read(number, &mark, sizeof mark) == static_cast<int>(sizeof mark) &&
                 std::memcmp(mark.name, UnfinishedMark::kName, sizeof mark.name) == 0 &&
                 mark.end == static_cast<std::uint64_t>(size);
    }
    _close(number);

    found.marked = marked;
    found.size = marked ? mark.whole_size : static_cast<unsigned long long>(std::max(size, 0ll));
    if (marked && (mark.whole_size == UnfinishedMark::kNotWhole || mark.whole_size > mark.end)) {
        found.state = Leftover::unfinished;
        found.size = 0;
    } else {
        found.state = found.size == 0 ? Leftover::empty : Leftover::complete;
    }
    return found;
}

/// Tells whether a file is the beginning of another one, but for zeroes at its end.
bool begins_like(const fs::path& file, const fs::path& other) {
    std::ifstream a(file, std::ios::binary), b(other, std::ios::binary);
    std::array<char, 4096> mine, theirs;
    for (bool only_zeroes = false; a;) {
        a.read(mine.data(), mine.size());
        b.read(theirs.data(), a.gcount());
        const auto end = mine.begin() + a.gcount();
        auto rest = mine.begin();
        if (!only_zeroes) rest = std::mismatch(rest, end, theirs.begin(), theirs.begin() + b.gcount()).first;
        only_zeroes = only_zeroes || rest != end;
        if (std::any_of(rest, end, [](char c) { return c != 0; })) return false;
    }
    return true;
}

bool is_copy_of_a_neighbour(const fs::path& file) {
    for (const auto& entry : fs::directory_iterator(file.parent_path())) {
        std::error_code ignored;
        const bool other = entry.is_regular_file(ignored) && !is_temporary_name(entry.path());
        if (other && begins_like(file, entry.path())) return true;
    }
    return false;
}

/// @return a name beside a file that is free
fs::path free_name_beside(const fs::path& file) {
    for (unsigned number = 1;; ++number) {
        fs::path name = file;
        name += L".before-recovery" + (number > 1 ? L"-" + std::to_wstring(number) : std::wstring());
        if (!fs::exists(name)) return name;
    }
}

} // namespace

std::vector<Leftover> find_leftovers(const fs::path& place, const std::string& shown) {
    std::vector<Leftover> found;
    std::error_code error;
    if (fs::is_directory(place, error)) {
        for (const auto& entry : fs::directory_iterator(place)) {
            if (!entry.is_regular_file() || !is_temporary_name(entry.path())) continue;
            Leftover leftover = examine(entry.path());
            const bool whole = leftover.state == Leftover::complete && !leftover.marked;
            if (whole && is_copy_of_a_neighbour(entry.path())) leftover.state = Leftover::copy;
            found.push_back(leftover);
        }
    } else if (fs::is_regular_file(place, error)) {
        if (!is_temporary_name(place)) fail(shown + ": is no temporary file of the library's (QZP*.tmp)");
        found.push_back(examine(place));
    } else {
        fail(shown + ": there is no such folder");
    }
    std::sort(found.begin(), found.end(),
              [](const Leftover& a, const Leftover& b) { return a.written > b.written; });
    return found;
}

// The document is copied, flushed and only then named; its temporary file goes last of all.
fs::path put_back(const Leftover& leftover, const fs::path& target, const std::string& shown) {
    fs::path kept;
    {
        Replacement replacement(target, shown);
        unsigned long long left = leftover.size;
        read_pieces(leftover.path, shown, [&](std::string_view piece) {
            piece =
                piece.substr(0, static_cast<std::size_t>(std::min<unsigned long long>(left, piece.size())));
            replacement.write(piece);
            left -= piece.size();
        });
        if (left != 0) fail(shown + ": the temporary file became shorter");
        if (fs::exists(target)) {
            kept = free_name_beside(target);
            if (!fs::copy_file(target, kept)) fail(shown + ": the file of this name cannot be kept");
        }
        replacement.take_place();
    }
    std::error_code ignored;
    fs::remove(leftover.path, ignored);
    return kept;
}

} // namespace tool
