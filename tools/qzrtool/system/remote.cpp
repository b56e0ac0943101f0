#include "system/remote.h"

#include "fio/ftp_listing.h"
#include "fio/ftp_reply.h"
#include "qzstring.h"
#include "system/encoding.h"
#include "system/failure.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace tool {

namespace {

constexpr std::wstring_view kScheme = L"ftp://";

RemoteEntry entry_of(const WIN32_FIND_DATAW& found) {
    const unsigned long long high = found.nFileSizeHigh;
    return {found.cFileName, (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
            (high << 32) + found.nFileSizeLow};
}

/// Everything in the directory that an address names.
class DirectoryTask final : public qzr::ListingTask {
public:
    using ListingTask::ListingTask;

    std::vector<RemoteEntry>& entries() { return entries_; }

private:
    /// A server may list nothing for what does not exist, so the directory is entered first.
    DWORD talk(HINTERNET connection) override {
        const wchar_t* const directory = *path() != L'\0' ? path() : L"/";
        if (FtpSetCurrentDirectoryW(connection, directory) == FALSE) {
            const DWORD error = qzr::client_error();
            return qzr::is_final_failure(qzr::Reply().code()) ? DWORD{ERROR_PATH_NOT_FOUND} : error;
        }
        moved();
        return list(connection, L"*");
    }

    void take(const WIN32_FIND_DATAW& entry) override { entries_.push_back(entry_of(entry)); }

    std::vector<RemoteEntry> entries_;
};

const char* reason_of(DWORD error) {
    switch (error) {
    case ERROR_INTERNET_INVALID_URL:
        return "is no address";
    case ERROR_NO_UNICODE_TRANSLATION:
        return "has characters that cannot be sent in this system's code page";
    case ERROR_PATH_NOT_FOUND:
        return "there is no such directory";
    case ERROR_INTERNET_TIMEOUT:
        return "the listing does not come to an end";
    case ERROR_INTERNET_NAME_NOT_RESOLVED:
    case ERROR_INTERNET_CANNOT_CONNECT:
        return "there is no connection";
    case ERROR_INTERNET_LOGIN_FAILURE:
    case ERROR_INTERNET_INCORRECT_USER_NAME:
    case ERROR_INTERNET_INCORRECT_PASSWORD:
        return "the server does not let us in";
    default:
        return "cannot be listed as a whole";
    }
}

} // namespace

bool is_remote(std::wstring_view argument) {
    const CXStringW start(std::wstring(argument.substr(0, kScheme.size())).c_str());
    return start.CompareI(kScheme.data()) == 0;
}

std::string without_passwords(std::string text) {
    for (std::size_t at = text.find("://"); at != text.npos; at = text.find("://", at)) {
        at += 3;
        const std::size_t end = std::min(text.find_first_of("/\\", at), text.size());
        const std::size_t host = text.substr(0, end).rfind('@');
        const std::size_t colon = text.find(':', at);
        if (host == text.npos || host < at || colon >= host) continue;
        text.replace(colon + 1, host - colon - 1, "***");
    }
    return text;
}

std::vector<RemoteEntry> list_remote(const std::wstring& url, unsigned timeout) {
    constexpr DWORD kSecond = 1000;
    constexpr unsigned kMostSeconds = 24 * 60 * 60;
    const auto task = std::make_shared<DirectoryTask>(url.c_str(), std::min(timeout, kMostSeconds) * kSecond);
    const DWORD error = qzr::run_ftp(task);
    if (error != ERROR_SUCCESS) fail(without_passwords(printable(utf8(url))) + ": " + reason_of(error));
    return std::move(task->entries());
}

} // namespace tool
