#include "system/files.h"

#include "qzfile.h"
#include "system/failure.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <share.h>
#include <sys/stat.h>
#include <system_error>
#include <utility>

namespace tool {

namespace {

namespace fs = std::filesystem;

constexpr unsigned kPiece = 1 << 20;

/// A file open for reading.
class Source {
public:
    Source(const fs::path& file, std::string shown) : shown_(std::move(shown)) {
        std::error_code ignored;
        if (fs::is_directory(file, ignored)) fail(shown_ + ": is a directory");
        _wsopen_s(&number_, file.c_str(), _O_RDONLY | _O_BINARY, _SH_DENYNO, 0);
        if (number_ < 0) fail(shown_ + ": cannot be opened: " + system_text(errno));
    }
    ~Source() {
        if (number_ >= 0) _close(number_);
    }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    std::size_t size() const {
        const long long size = _filelengthi64(number_);
        if (size < 0) fail(shown_ + ": cannot be read: " + system_text(errno));
        if (size > INT_MAX) fail(shown_ + ": is larger than 2 GiB");
        return static_cast<std::size_t>(size);
    }

    /// @return the bytes read, 0 at the end
    std::size_t read(char* to, std::size_t room) {
        const int got = _read(number_, to, static_cast<unsigned>(std::min<std::size_t>(room, kPiece)));
        if (got < 0) fail(shown_ + ": cannot be read: " + system_text(errno));
        return static_cast<std::size_t>(got);
    }

private:
    std::string shown_;
    int number_ = -1;
};

void refuse_target(const fs::path& file, const std::string& shown) {
    std::error_code ignored;
    const fs::file_status status = fs::status(file, ignored);
    if (fs::is_directory(status)) fail(shown + ": is a directory");
    const bool read_only = (status.permissions() & fs::perms::owner_write) == fs::perms::none;
    if (fs::exists(status) && read_only) fail(shown + ": is read-only");
}

} // namespace

// Under Wine the files of the Unix system lie on a drive of their own, so the script that starts this
// program there says which: a path that begins with one slash belongs to it.
fs::path native_path(const std::wstring& path) {
    const wchar_t* root = _wgetenv(L"QZRTOOL_UNIX_ROOT");
    const bool rooted = path.size() > 1 && path[0] == L'/' && path[1] != L'/';
    return root != nullptr && rooted ? fs::path(root + path).make_preferred() : fs::path(path);
}

std::string system_text(int error) { return std::generic_category().message(error); }

std::string read_file(const fs::path& file, const std::string& shown) {
    Source source(file, shown);
    std::string bytes(source.size(), '\0');
    std::size_t have = 0;
    while (have < bytes.size()) {
        const std::size_t got = source.read(bytes.data() + have, bytes.size() - have);
        if (got == 0) break; // it became shorter meanwhile
        have += got;
    }
    bytes.resize(have);
    return bytes;
}

void read_pieces(const fs::path& file, const std::string& shown,
                 const std::function<void(std::string_view)>& piece) {
    Source source(file, shown);
    std::string buffer(kPiece, '\0');
    while (const std::size_t got = source.read(buffer.data(), buffer.size())) {
        piece(std::string_view(buffer).substr(0, got));
    }
}

void replace_file(const fs::path& file, std::string_view bytes, const std::string& shown) {
    Replacement replacement(file, shown);
    replacement.write(bytes);
    replacement.take_place();
}

void read_standard_pieces(const std::function<void(std::string_view)>& piece) {
    const int number = _fileno(stdin);
    _setmode(number, _O_BINARY);
    std::string buffer(kPiece, '\0');
    for (;;) {
        const int got = _read(number, buffer.data(), kPiece);
        if (got < 0) fail("standard input cannot be read: " + system_text(errno));
        if (got == 0) return;
        piece(std::string_view(buffer).substr(0, static_cast<std::size_t>(got)));
    }
}

std::string read_standard_input() {
    std::string bytes;
    read_standard_pieces([&](std::string_view piece) {
        bytes += piece;
        if (bytes.size() > INT_MAX) fail("standard input holds more than 2 GiB");
    });
    return bytes;
}

Replacement::Replacement(const fs::path& target, std::string shown)
    : target_(target), shown_(std::move(shown)) {
    refuse_target(target_, shown_);
    for (int attempt = 0; number_ < 0 && attempt < 100; ++attempt) {
        path_ = target;
        path_ += L"." + std::to_wstring(_getpid()) + L"-" + std::to_wstring(attempt) + L".tmp";
        errno = 0;
        _wsopen_s(&number_, path_.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY, _SH_DENYRW, _S_IWRITE);
        if (number_ < 0 && errno != EEXIST) break;
    }
    if (number_ < 0) fail_writing();
    made_ = true;
}

Replacement::~Replacement() {
    if (number_ >= 0) _close(number_);
    if (made_) _wunlink(path_.c_str());
}

void Replacement::fail_writing() const { fail(shown_ + ": cannot be written: " + system_text(errno)); }

void Replacement::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto piece = static_cast<unsigned>(std::min<std::size_t>(bytes.size(), kPiece));
        const int written = _write(number_, bytes.data(), piece);
        if (written <= 0) fail_writing();
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void Replacement::close() {
    const int number = std::exchange(number_, -1);
    if (number >= 0 && _close(number) != 0) fail_writing();
}

void Replacement::take_place() {
    if (number_ < 0) _wsopen_s(&number_, path_.c_str(), _O_RDWR | _O_BINARY, _SH_DENYRW, 0);
    if (number_ < 0 || _commit(number_) != 0) fail_writing();
    close();
    std::error_code error;
    fs::rename(path_, target_, error);
    if (error) fail(shown_ + ": cannot be replaced: " + error.message());
    made_ = false;
}

ScratchFile::ScratchFile() : path_(Fio_GetTempFileName()) {}

ScratchFile::~ScratchFile() {
    std::error_code ignored;
    fs::remove(path_, ignored);
}

} // namespace tool
