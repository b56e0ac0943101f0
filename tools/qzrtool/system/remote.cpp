#include "system/remote.h"

#include "qzurl.h"
#include "system/encoding.h"
#include "system/failure.h"

#include <windows.h>
#include <wininet.h>

#include <algorithm>

namespace tool {

namespace {

constexpr std::wstring_view kScheme = L"ftp://";
constexpr DWORD kPatience = 30000; // milliseconds without an answer

/// A handle of the platform's internet functions, closed in the end.
class Internet {
public:
    explicit Internet(HINTERNET handle) : handle_(handle) {}
    ~Internet() {
        if (handle_ != nullptr) InternetCloseHandle(handle_);
    }
    Internet(const Internet&) = delete;
    Internet& operator=(const Internet&) = delete;

    HINTERNET get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }

private:
    HINTERNET handle_;
};

const wchar_t* text_or_null(const CXStringW& text) { return text.GetSize() != 0 ? text.GetData() : nullptr; }

void limit_waiting(const Internet& session) {
    DWORD limit = kPatience;
    for (const DWORD option :
         {INTERNET_OPTION_CONNECT_TIMEOUT, INTERNET_OPTION_SEND_TIMEOUT, INTERNET_OPTION_RECEIVE_TIMEOUT}) {
        InternetSetOptionW(session.get(), option, &limit, sizeof limit);
    }
}

RemoteEntry entry_of(WIN32_FIND_DATAW& found) {
    found.cFileName[MAX_PATH - 1] = L'\0'; // what a server lists is not to be trusted
    const unsigned long long high = found.nFileSizeHigh;
    return {found.cFileName, (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
            (high << 32) + found.nFileSizeLow};
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

std::vector<RemoteEntry> list_remote(const std::wstring& url) {
    const std::string shown = without_passwords(printable(utf8(url)));
    CXStringW host, user, password, path;
    if (Fio_UrlCrack(url.c_str(), host, user, password, path) == 0) fail(shown + ": is no address");
    const Internet session(InternetOpenW(nullptr, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
    if (!session) fail(shown + ": there is no connection");
    limit_waiting(session);
    const Internet connection(InternetConnectW(session.get(), host.GetData(), INTERNET_DEFAULT_FTP_PORT,
                                               text_or_null(user), text_or_null(password),
                                               INTERNET_SERVICE_FTP, INTERNET_FLAG_PASSIVE, 0));
    if (!connection) fail(shown + ": the server does not let us in");

    std::wstring pattern = path.GetData();
    while (pattern.ends_with(L'/') || pattern.ends_with(L'\\')) {
        pattern.pop_back();
    }
    pattern += L"/*";
    WIN32_FIND_DATAW found = {};
    const Internet listing(
        FtpFindFirstFileW(connection.get(), pattern.c_str(), &found, INTERNET_FLAG_RELOAD, 0));
    std::vector<RemoteEntry> entries;
    if (!listing) {
        if (GetLastError() == ERROR_NO_MORE_FILES) return entries;
        fail(shown + ": cannot be listed");
    }
    do {
        entries.push_back(entry_of(found));
    } while (InternetFindNextFileW(listing.get(), &found) != FALSE);
    return entries;
}

} // namespace tool
