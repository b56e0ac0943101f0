#include "fio/url_split.h"

#include "core/windows_lean.h"
#include "qzurl.h"

#include <algorithm>
#include <string>

#include <shlwapi.h>
#include <wininet.h>

namespace qzr {

namespace {

CXStringW part(const wchar_t* text, DWORD length) {
    CXStringW copy;
    if (text == nullptr || length == 0) return copy;
    std::copy_n(text, length, copy.GetBuffer(static_cast<int>(length)))[0] = L'\0';
    copy.ReleaseBuffer();
    return copy;
}

bool is_control(wchar_t c) { return c < L' ' || c == 0x7F; }

} // namespace

bool split_url(const wchar_t* url, UrlParts& parts) {
    if (Fio_PathIsURL(url) == 0) return false;
    CXStringW text(url);
    const int size = static_cast<int>(text.GetSize());
    wchar_t* const begin = text.GetBuffer(size);
    if (std::any_of(begin, begin + size, is_control)) return false;
    std::replace(std::find(begin, begin + size, L':'), begin + size, L'\\', L'/');

    URL_COMPONENTSW found = {};
    found.dwStructSize = sizeof found;
    constexpr DWORD kWanted = 1; // answered by a pointer into the text, and a length
    found.dwHostNameLength = found.dwUserNameLength = found.dwPasswordLength = found.dwUrlPathLength =
        kWanted;
    if (InternetCrackUrlW(begin, static_cast<DWORD>(size), 0, &found) == FALSE) return false;
    parts = {
        part(found.lpszHostName, found.dwHostNameLength), part(found.lpszUserName, found.dwUserNameLength),
        part(found.lpszPassword, found.dwPasswordLength), part(found.lpszUrlPath, found.dwUrlPathLength)};
    return true;
}

} // namespace qzr

int Fio_PathIsURL(const wchar_t* path) { return path != nullptr ? PathIsURLW(path) : 0; }

int Fio_UrlCrack(const wchar_t* url, CXStringW& host, CXStringW& user, CXStringW& password, CXStringW& path) {
    qzr::UrlParts parts;
    if (!qzr::split_url(url, parts)) return 0;
    host = parts.host;
    user = parts.user;
    password = parts.password;
    path = parts.path;
    return 1;
}
