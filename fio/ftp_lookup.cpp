#include "fio/ftp_lookup.h"

#include "core/system_error.h"
#include "fio/error_mode.h"
#include "fio/file_info.h"
#include "fio/ftp_session.h"
#include "qzurl.h"

namespace qzr {

namespace {

class FindTask final : public FtpTask {
public:
    explicit FindTask(const wchar_t* url) : FtpTask(url, kListing) {}

    const WIN32_FIND_DATAW& found() const { return found_; }

private:
    // The listing of all names with the same extension. A server's answer that it has none, in whatever
    // words, is no failure of ours: the file is missing.
    DWORD talk(HINTERNET connection) override {
        const QuietErrorMode quiet;
        const CXStringW whole = path();
        const CXStringW name = whole.FileName();
        const CXStringW pattern = whole.FilePath() + L"/*." + whole.FileExt();
        const InternetHandle listing(FtpFindFirstFileW(connection, pattern, &found_, kFreshListing, 0));
        if (!listing) return ERROR_FILE_NOT_FOUND;
        do {
            moved();
            if (is_named(name)) return ERROR_SUCCESS;
        } while (InternetFindNextFileW(listing.get(), &found_) != FALSE);
        return ERROR_FILE_NOT_FOUND;
    }

    // What a server lists is not to be trusted: the name may fill its buffer to the end.
    bool is_named(const CXStringW& name) {
        found_.cFileName[MAX_PATH - 1] = L'\0';
        constexpr int kToTheEnd = -1;
        constexpr BOOL kIgnoreCase = TRUE;
        return CompareStringOrdinal(found_.cFileName, kToTheEnd, name, kToTheEnd, kIgnoreCase) == CSTR_EQUAL;
    }

    WIN32_FIND_DATAW found_ = {};
};

} // namespace

DWORD find_remote(const wchar_t* url, WIN32_FIND_DATAW& found) {
    const auto task = make_ftp_task<FindTask>(url);
    const DWORD error = run_ftp(task);
    if (error == ERROR_SUCCESS) found = task->found();
    return error;
}

bool remote_exists(const wchar_t* url) {
    WIN32_FIND_DATAW found;
    return find_remote(url, found) == ERROR_SUCCESS;
}

} // namespace qzr

void Fio_UrlGetFileInfo(const wchar_t* url, FioFileInfo* info) {
    WIN32_FIND_DATAW found = {};
    const DWORD error = info != nullptr ? qzr::find_remote(url, found) : ERROR_FILE_NOT_FOUND;
    if (error != ERROR_SUCCESS) qzr::throw_file_error(QZOP_FILE_INFO, url, error);
    qzr::fill_file_info(found, *info);
}
