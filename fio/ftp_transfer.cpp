#include "fio/ftp_transfer.h"

#include "core/scope_exit.h"
#include "core/system_error.h"
#include "fio/ftp_session.h"
#include "fio/temp_name.h"

#include <cwchar>
#include <optional>

namespace qzr {

namespace {

using FileSize = unsigned long long;

constexpr DWORD kChunk = 32 * 1024;

// What the server said last: a reply code and text, possibly of several lines, of which the last one counts.
class Reply {
public:
    Reply() {
        constexpr DWORD kUsual = 256;
        constexpr DWORD kLongest = 64 * 1024;
        for (DWORD units = kUsual; !read(units) && units < kLongest;)
            units *= 2;
    }
    const wchar_t* last_line() const {
        const wchar_t* line = text_;
        for (const wchar_t* p = text_; *p != L'\0'; ++p)
            if (*p == L'\n' && p[1] != L'\0') line = p + 1;
        return line;
    }

private:
    // False when it does not fit into so many units.
    bool read(DWORD units) {
        wchar_t* const buffer = text_.GetBuffer(static_cast<int>(units));
        DWORD error = 0;
        const bool known = InternetGetLastResponseInfoW(&error, buffer, &units) != FALSE;
        const bool too_long = !known && last_error() == ERROR_INSUFFICIENT_BUFFER;
        buffer[known ? units : 0] = L'\0';
        text_.ReleaseBuffer();
        return !too_long;
    }

    CXStringW text_;
};

// The platform does not tell whether the server was content in the end; its last reply does.
bool last_reply_is_failure() {
    const wchar_t first = *Reply().last_line();
    return first == L'4' || first == L'5';
}

bool is_digit(wchar_t c) { return c >= L'0' && c <= L'9'; }

// The size that the server says a file has; none when it tells no number. Nothing else tells a
// transfer that broke off from one that is complete.
std::optional<FileSize> remote_size(HINTERNET connection, const CXStringW& path) {
    constexpr BOOL kNoData = FALSE;
    if (FtpCommandW(connection, kNoData, FTP_TRANSFER_TYPE_BINARY, L"TYPE I", 0, nullptr) == FALSE ||
        FtpCommandW(connection, kNoData, FTP_TRANSFER_TYPE_BINARY, L"SIZE " + path, 0, nullptr) == FALSE)
        return {};
    const Reply reply;
    const wchar_t* const line = reply.last_line();
    constexpr wchar_t kSizeReply[] = L"213 ";
    constexpr std::size_t kPrefix = std::size(kSizeReply) - 1;
    if (std::wcsncmp(line, kSizeReply, kPrefix) != 0 || !is_digit(line[kPrefix])) return {};
    return std::wcstoull(line + kPrefix, nullptr, 10);
}

class DownloadTask final : public FtpTask {
public:
    DownloadTask(const wchar_t* url, FileHandle file) : FtpTask(url), file_(std::move(file)) {}

private:
    DWORD talk(HINTERNET connection) override {
        const std::optional<FileSize> announced = remote_size(connection, path());
        moved();
        InternetHandle remote(FtpOpenFileW(connection, path(), GENERIC_READ, kFreshTransfer, 0));
        if (!remote) return client_error();
        moved();
        FileSize received = 0;
        if (const DWORD error = receive(remote.get(), received); error != ERROR_SUCCESS) return error;
        remote.reset();
        if (last_reply_is_failure()) return ERROR_INTERNET_EXTENDED_ERROR;
        if (announced && received < *announced) return ERROR_INTERNET_CONNECTION_ABORTED;
        return finish();
    }

    DWORD receive(HINTERNET remote, FileSize& received) {
        char chunk[kChunk];
        for (;;) {
            DWORD size = 0;
            if (InternetReadFile(remote, chunk, sizeof chunk, &size) == FALSE) return client_error();
            if (size == 0) return ERROR_SUCCESS;
            moved();
            received += size;
            DWORD written = 0;
            if (!keep([&] { return WriteFile(file_.get(), chunk, size, &written, nullptr) != FALSE; }))
                return last_error();
            if (written != size) return ERROR_DISK_FULL;
        }
    }

    DWORD finish() {
        return keep([&] {
            file_.reset();
            return true;
        })
                   ? ERROR_SUCCESS
                   : ERROR_INTERNET_TIMEOUT;
    }

    void give_back() noexcept override { file_.reset(); }

    FileHandle file_;
};

class UploadTask final : public FtpTask {
public:
    UploadTask(const wchar_t* url, FileHandle file) : FtpTask(url), file_(std::move(file)) {}

    // Whether the server took the name, and so let go of what was there before. Also after a failure.
    bool began() const { return began_; }

private:
    DWORD talk(HINTERNET connection) override {
        InternetHandle remote(FtpOpenFileW(connection, path(), GENERIC_WRITE, kFreshTransfer, 0));
        if (!remote) return client_error();
        began_ = true;
        moved();
        FileSize sent = 0;
        if (const DWORD error = send(remote.get(), sent); error != ERROR_SUCCESS) return error;
        remote.reset();
        if (last_reply_is_failure()) return ERROR_INTERNET_EXTENDED_ERROR;
        const std::optional<FileSize> arrived = remote_size(connection, path());
        return arrived && *arrived != sent ? DWORD{ERROR_INTERNET_CONNECTION_ABORTED} : DWORD{ERROR_SUCCESS};
    }

    DWORD send(HINTERNET remote, FileSize& sent) {
        char chunk[kChunk];
        for (;;) {
            DWORD size = 0;
            if (!keep([&] { return ReadFile(file_.get(), chunk, sizeof chunk, &size, nullptr) != FALSE; }))
                return last_error();
            if (size == 0) return ERROR_SUCCESS;
            for (DWORD done = 0; done < size;) {
                DWORD now = 0;
                if (InternetWriteFile(remote, chunk + done, size - done, &now) == FALSE)
                    return client_error();
                if (now == 0) return ERROR_INTERNET_CONNECTION_ABORTED;
                done += now;
                moved();
            }
            sent += size;
        }
    }

    void give_back() noexcept override { file_.reset(); }

    FileHandle file_;
    std::atomic<bool> began_{false};
};

class DeleteTask final : public FtpTask {
public:
    using FtpTask::FtpTask;

private:
    DWORD talk(HINTERNET connection) override {
        return FtpDeleteFileW(connection, path()) != FALSE ? ERROR_SUCCESS : client_error();
    }
};

// The directory of a local path, as temporary files want it.
CXStringW directory_of(const wchar_t* path) {
    CXStringW directory = CXStringW(path).FilePath();
    if (directory.GetSize() == 0) directory = L".";
    return directory.AddDirDelim();
}

} // namespace

DWORD download(const wchar_t* url, const wchar_t* local_path) {
    if (local_path == nullptr || *local_path == L'\0') return ERROR_PATH_NOT_FOUND;
    wchar_t arriving[kPathUnits] = L"";
    if (const DWORD error = make_temp_file(directory_of(local_path), arriving); error != ERROR_SUCCESS)
        return error;
    ScopeExit undo([&] { DeleteFileW(arriving); });
    FileHandle file(CreateFileW(arriving, GENERIC_WRITE, 0, nullptr, TRUNCATE_EXISTING, 0, nullptr));
    if (!file) return last_error();
    if (const DWORD error = run_ftp(make_ftp_task<DownloadTask>(url, std::move(file)));
        error != ERROR_SUCCESS)
        return error;
    if (MoveFileExW(arriving, local_path, MOVEFILE_REPLACE_EXISTING) == FALSE) return last_error();
    undo.dismiss();
    return ERROR_SUCCESS;
}

DWORD upload(const wchar_t* url, const wchar_t* local_path) {
    FileHandle file(CreateFileW(local_path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file) return last_error();
    const auto task = make_ftp_task<UploadTask>(url, std::move(file));
    const DWORD error = run_ftp(task);
    if (error != ERROR_SUCCESS && task->began()) delete_remote(url);
    return error;
}

DWORD delete_remote(const wchar_t* url) { return run_ftp(make_ftp_task<DeleteTask>(url)); }

} // namespace qzr
