#include "fio/ftp_listing.h"

#include "core/system_error.h"
#include "fio/error_mode.h"
#include "fio/ftp_reply.h"

namespace qzr {

namespace {

// More than a directory that people use; without a bound a server could fill the memory.
constexpr unsigned kMostEntries = 1000000;

constexpr bool is_end_of_transfer(int code) { return code == 226 || code == 250; }

// A refusal for good, in whatever words: the server has none.
constexpr bool has_none(int code) {
    constexpr int kNoSuchFile = 450; // of some servers
    return code == kNoSuchFile || is_final_failure(code);
}

// Why no entry came. @return 0 when the listing is empty
DWORD nothing_listed(HINTERNET connection) {
    const DWORD error = client_error();
    const int code = Reply().code();
    if (has_none(code)) return ERROR_FILE_NOT_FOUND;
    if (!is_end_of_transfer(code)) return error;
    return still_answers(connection) ? DWORD{ERROR_SUCCESS} : error;
}

} // namespace

DWORD ListingTask::list(HINTERNET connection, const wchar_t* pattern) {
    const QuietErrorMode quiet;
    WIN32_FIND_DATAW entry = {};
    InternetHandle listing(FtpFindFirstFileW(connection, pattern, &entry, kFreshListing, 0));
    if (!listing) return nothing_listed(connection);
    if (const DWORD error = read_entries(listing.get(), entry); error != ERROR_SUCCESS) return error;
    listing.reset();
    return transfer_end(connection);
}

DWORD ListingTask::read_entries(HINTERNET listing, WIN32_FIND_DATAW& entry) {
    for (unsigned count = 0; count < kMostEntries; ++count) {
        moved();
        entry.cFileName[MAX_PATH - 1] = L'\0';
        take(entry);
        if (InternetFindNextFileW(listing, &entry) != FALSE) continue;
        const DWORD error = client_error();
        return error == ERROR_NO_MORE_FILES ? DWORD{ERROR_SUCCESS} : error;
    }
    return ERROR_TOO_MANY_NAMES;
}

} // namespace qzr
