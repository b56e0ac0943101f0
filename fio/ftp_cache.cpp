// The platform's internet cache.
#include "fio/file_state.h"
#include "fio/ftp_transfer.h"
#include "fio/url_split.h"
#include "qzurl.h"

#include <cwchar>

#include <wininet.h>

namespace qzr {

namespace {

// The URL under which the cache knows a file: without the password, which it would keep in the clear.
CXStringW cache_name(const UrlParts& parts) {
    CXStringW name(L"ftp://");
    if (parts.user.GetSize() != 0) name = name + parts.user + L"@";
    return name + parts.host + parts.path;
}

// What the file in the cache is to end with. The platform copies it unchecked into a path of its own, so that
// no long one may come there.
CXStringW cache_extension(const UrlParts& parts) {
    constexpr unsigned kLongest = 64;
    const CXStringW extension = parts.path.FileExt();
    return extension.GetSize() <= kLongest ? extension : CXStringW();
}

// Room for a file in the cache. The platform's own function for the whole of this hangs on missing files, and
// it would follow the URL's port.
bool make_room(const CXStringW& name, const wchar_t* extension, wchar_t (&path)[kPathUnits]) {
    static_assert(kPathUnits >= MAX_PATH);
    return CreateUrlCacheEntryW(name, 0, extension, path, 0) != FALSE;
}

bool commit(const CXStringW& name, wchar_t* path, const wchar_t* extension) {
    constexpr FILETIME kNever = {};
    return CommitUrlCacheEntryW(name, path, kNever, kNever, NORMAL_CACHE_ENTRY, nullptr, 0, extension,
                                nullptr) != FALSE;
}

} // namespace

} // namespace qzr

const wchar_t* Fio_DownloadToCacheFile(const wchar_t* url) {
    qzr::UrlParts parts;
    if (!qzr::split_url(url, parts)) return nullptr;
    const CXStringW name = qzr::cache_name(parts);
    const CXStringW extension = qzr::cache_extension(parts);
    wchar_t path[qzr::kPathUnits] = L"";
    if (!qzr::make_room(name, extension, path)) return nullptr;
    if (qzr::download(url, path) != ERROR_SUCCESS || !qzr::commit(name, path, extension)) {
        DeleteFileW(path);
        return nullptr;
    }
    return std::wmemcpy(qzr::file_state().cache_path, path, qzr::kPathUnits);
}
