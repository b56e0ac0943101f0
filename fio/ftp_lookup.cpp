#include "fio/ftp_lookup.h"

#include "core/system_error.h"
#include "fio/file_info.h"
#include "fio/ftp_listing.h"
#include "fio/make_ftp_task.h"
#include "qzurl.h"

namespace qzr {

namespace {

class FindTask final : public ListingTask {
public:
    explicit FindTask(const wchar_t* url) : ListingTask(url), name_(CXStringW(path()).FileName()) {}

    const WIN32_FIND_DATAW& found() const { return found_; }

private:
    // The listing of all names with the same extension.
    DWORD talk(HINTERNET connection) override {
        const CXStringW whole = path();
        const CXStringW pattern = whole.FilePath() + L"/*." + whole.FileExt();
        if (const DWORD error = list(connection, pattern); error != ERROR_SUCCESS) return error;
        return is_found_ ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
    }

    void take(const WIN32_FIND_DATAW& entry) override {
        if (is_found_ || !is_named(entry.cFileName)) return;
        found_ = entry;
        is_found_ = true;
    }

    bool is_named(const wchar_t* listed) const {
        constexpr int kToTheEnd = -1;
        constexpr BOOL kIgnoreCase = TRUE;
        return CompareStringOrdinal(listed, kToTheEnd, name_, kToTheEnd, kIgnoreCase) == CSTR_EQUAL;
    }

    const CXStringW name_;
    bool is_found_ = false;
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
