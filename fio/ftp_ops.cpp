// Operations on remote files and directories.
#include "core/system_error.h"
#include "fio/ftp_lookup.h"
#include "fio/ftp_reply.h"
#include "fio/ftp_session.h"
#include "fio/ftp_transfer.h"
#include "fio/make_ftp_task.h"
#include "qzexception.h"
#include "qzurl.h"

#include <algorithm>
#include <atomic>
#include <string_view>

namespace qzr {

namespace {

// Lets a query fail in the way the platform's functions do.
int answer(DWORD error) {
    if (error == ERROR_SUCCESS) return 1;
    SetLastError(error);
    return 0;
}

class MakeDirectoryTask final : public FtpTask {
public:
    using FtpTask::FtpTask;

private:
    // What the client can make its current directory exists.
    static bool exists(HINTERNET connection, const wchar_t* directory) {
        return FtpSetCurrentDirectoryW(connection, directory) != FALSE;
    }

    DWORD talk(HINTERNET connection) override {
        CXStringW directory = path();
        if (directory.GetSize() == 0 || exists(connection, directory)) return ERROR_SUCCESS;
        wchar_t* const begin = directory.GetBuffer(static_cast<int>(directory.GetSize()));
        for (wchar_t* p = begin; *p != L'\0';) {
            p += *p == L'/' ? 1 : 0;
            p += std::wstring_view(p).substr(0, std::wstring_view(p).find(L'/')).size();
            if (const DWORD error = make(connection, begin, p); error != ERROR_SUCCESS) return error;
            moved();
        }
        return ERROR_SUCCESS;
    }

    // Makes the directory whose name ends at `end`, unless it is there or has no name.
    static DWORD make(HINTERNET connection, wchar_t* begin, wchar_t* end) {
        if (end == begin || end[-1] == L'/') return ERROR_SUCCESS;
        const wchar_t delimiter = std::exchange(*end, L'\0');
        const bool made = exists(connection, begin) || FtpCreateDirectoryW(connection, begin) != FALSE;
        const DWORD error = made ? ERROR_SUCCESS : client_error();
        *end = delimiter;
        return error;
    }
};

// Writes an empty file and deletes it again.
class ProbeTask final : public FtpTask {
public:
    using FtpTask::FtpTask;

    // Whether the file is there still, as far as is known; after a failure too.
    bool may_stay() const { return may_stay_; }

private:
    DWORD talk(HINTERNET connection) override {
        may_stay_ = true;
        InternetHandle probe(FtpOpenFileW(connection, path(), GENERIC_WRITE, FTP_TRANSFER_TYPE_BINARY, 0));
        if (!probe) {
            const DWORD error = client_error();
            may_stay_ = !Reply().is_failure();
            return error;
        }
        moved();
        probe.reset();
        may_stay_ = FtpDeleteFileW(connection, path()) == FALSE;
        return ERROR_SUCCESS;
    }

    std::atomic<bool> may_stay_{false};
};

// Of a name that nobody has on the server. Where the conversation ends early, another one cleans up.
bool can_be_written(const wchar_t* probe) {
    const auto task = make_ftp_task<ProbeTask>(probe);
    const bool written = run_ftp(task) == ERROR_SUCCESS;
    if (task->may_stay()) delete_remote(probe);
    return written;
}

// The directory part of a path, "." when it has none.
CXStringW directory_part(const wchar_t* path) {
    CXStringW directory = CXStringW(path).FilePath();
    if (directory.GetSize() == 0) directory = L".";
    return directory;
}

// Each try asks the server, so a few have to do: a server that knows every name cannot be probed.
constexpr int kProbeNames = 8;

bool is_writable_directory(const wchar_t* url) {
    for (DWORD tick = GetTickCount(), tries = 0; tries < kProbeNames; ++tries) {
        CXStringW probe;
        probe.Format(L"%s\\%d.tmp", url, static_cast<int>(tick));
        WIN32_FIND_DATAW found;
        const DWORD error = find_remote(probe, found);
        if (error == ERROR_FILE_NOT_FOUND) return can_be_written(probe);
        if (error != ERROR_SUCCESS) return false;
        tick = std::max(tick + 1, GetTickCount());
    }
    return false;
}

} // namespace

} // namespace qzr

int Fio_DownloadToFile(const wchar_t* url, const wchar_t* localPath) {
    return qzr::answer(qzr::download(url, localPath));
}

int Fio_UrlPutFile(const wchar_t* url, const wchar_t* localPath) {
    if (Fio_IsFileExist(localPath) == 0) return 0;
    WIN32_FIND_DATAW found;
    const DWORD error = qzr::find_remote(url, found);
    if (error != ERROR_SUCCESS && error != ERROR_FILE_NOT_FOUND) return qzr::answer(error);
    if (error == ERROR_SUCCESS && Fio_UrlIsWritableFile(url) == 0) return 0;
    try {
        Fio_UrlCreateDirectory(qzr::directory_part(url));
    } catch (const CXException&) {
        return 0;
    }
    return qzr::answer(qzr::upload(url, localPath));
}

int Fio_UrlDeleteFile(const wchar_t* url) {
    WIN32_FIND_DATAW found;
    const DWORD error = qzr::find_remote(url, found);
    return qzr::answer(error == ERROR_SUCCESS ? qzr::delete_remote(url) : error);
}

void Fio_UrlCreateDirectory(const wchar_t* url) {
    const DWORD error = qzr::run_ftp(qzr::make_ftp_task<qzr::MakeDirectoryTask>(url));
    if (error != ERROR_SUCCESS) qzr::throw_file_error(QZOP_OPEN, url, error);
}

int Fio_UrlIsWritableDir(const wchar_t* url) {
    return Fio_PathIsURL(url) != 0 && qzr::is_writable_directory(url);
}

int Fio_UrlIsWritableFile(const wchar_t* url) {
    if (url == nullptr) return 0;
    WIN32_FIND_DATAW found = {};
    const DWORD error = qzr::find_remote(url, found);
    // What fails already is told now, not by a Commit that sends nothing.
    if (error != ERROR_SUCCESS && error != ERROR_FILE_NOT_FOUND) return 0;
    if (error == ERROR_SUCCESS && (found.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0) return 0;
    return Fio_UrlIsWritableDir(qzr::directory_part(url));
}
