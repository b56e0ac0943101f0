#include "fio/ftp_transfer.h"

#include "core/scope_exit.h"
#include "core/system_error.h"
#include "fio/ftp_reply.h"
#include "fio/ftp_session.h"
#include "fio/make_ftp_task.h"
#include "fio/path_kind.h"
#include "fio/temp_name.h"

#include <optional>

namespace qzr {

namespace {

constexpr DWORD kChunk = 32 * 1024;

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
        if (const DWORD error = transfer_end(connection); error != ERROR_SUCCESS) return error;
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
    if (is_memory_path(local_path)) return ERROR_INVALID_NAME;
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

DWORD delete_remote(const wchar_t* url) { return run_ftp(make_ftp_task<DeleteTask>(url)); }

} // namespace qzr
