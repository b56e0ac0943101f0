#include "files.h"

#include "diagnostics.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <share.h>
#include <sys/stat.h>
#include <system_error>

namespace tool {

namespace {

namespace fs = std::filesystem;

constexpr unsigned kPiece = 1 << 20;

/// A file descriptor that is closed at the end.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { _close(number_); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

private:
    int number_;
};

/// The new file beside the target; removed unless it took the target's place.
class Replacement {
public:
    explicit Replacement(const fs::path& target) {
        for (int attempt = 0; number_ < 0 && attempt < 100; ++attempt) {
            path_ = target;
            path_ += L"." + std::to_wstring(_getpid()) + L"-" + std::to_wstring(attempt) + L".tmp";
            errno = 0;
            _wsopen_s(&number_, path_.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY, _SH_DENYRW,
                      _S_IWRITE);
            if (number_ < 0 && errno != EEXIST) break;
        }
    }
    ~Replacement() {
        if (number_ >= 0) _close(number_);
        if (made_) _wunlink(path_.c_str());
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    bool made() {
        made_ = number_ >= 0;
        return made_;
    }

    bool fill(std::string_view bytes) {
        while (!bytes.empty()) {
            const auto piece = static_cast<unsigned>(std::min<std::size_t>(bytes.size(), kPiece));
            const int written = _write(number_, bytes.data(), piece);
            if (written <= 0) return false;
            bytes.remove_prefix(static_cast<std::size_t>(written));
        }
        if (_commit(number_) != 0) return false;
        const int number = number_;
        number_ = -1;
        return _close(number) == 0;
    }

    std::error_code take_place_of(const fs::path& target) {
        std::error_code error;
        fs::rename(path_, target, error);
        if (!error) made_ = false;
        return error;
    }

private:
    fs::path path_;
    int number_ = -1;
    bool made_ = false;
};

void refuse_target(const fs::path& file, const std::string& shown) {
    std::error_code ignored;
    const fs::file_status status = fs::status(file, ignored);
    if (fs::is_directory(status)) fail(shown + ": is a directory");
    const bool read_only = (status.permissions() & fs::perms::owner_write) == fs::perms::none;
    if (fs::exists(status) && read_only) fail(shown + ": is read-only");
}

} // namespace

std::string system_text(int error) { return std::generic_category().message(error); }

std::string read_file(const fs::path& file, const std::string& shown) {
    std::error_code ignored;
    if (fs::is_directory(file, ignored)) fail(shown + ": is a directory");
    int number = -1;
    _wsopen_s(&number, file.c_str(), _O_RDONLY | _O_BINARY, _SH_DENYNO, 0);
    if (number < 0) fail(shown + ": cannot be opened: " + system_text(errno));
    const Descriptor descriptor(number);

    const long long size = _filelengthi64(number);
    if (size < 0) fail(shown + ": cannot be read: " + system_text(errno));
    if (size > INT_MAX) fail(shown + ": is larger than 2 GiB");
    std::string bytes(static_cast<std::size_t>(size), '\0');
    std::size_t have = 0;
    while (have < bytes.size()) {
        const auto piece = static_cast<unsigned>(std::min<std::size_t>(bytes.size() - have, kPiece));
        const int got = _read(number, bytes.data() + have, piece);
        if (got < 0) fail(shown + ": cannot be read: " + system_text(errno));
        if (got == 0) break; // it became shorter meanwhile
        have += static_cast<std::size_t>(got);
    }
    bytes.resize(have);
    return bytes;
}

void replace_file(const fs::path& file, std::string_view bytes, const std::string& shown) {
    refuse_target(file, shown);
    Replacement replacement(file);
    if (!replacement.made()) fail(shown + ": cannot be written: " + system_text(errno));
    if (!replacement.fill(bytes)) fail(shown + ": cannot be written: " + system_text(errno));
    const std::error_code error = replacement.take_place_of(file);
    if (error) fail(shown + ": cannot be replaced: " + error.message());
}

} // namespace tool
