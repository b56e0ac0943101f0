// Who owns a file, and who may write.
#include "core/allocator.h"
#include "core/system_error.h"
#include "core/win_handle.h"
#include "fio/path_kind.h"
#include "qzexception.h"
#include "qzstring.h"
#include "qzurl.h"

namespace qzr {

namespace {

// Parts of a file's security descriptor, empty when they cannot be had. A path for which the system answers
// anything but how much room it needs has none.
Vector<unsigned char> security_of(const wchar_t* path, SECURITY_INFORMATION parts) {
    Vector<unsigned char> descriptor;
    DWORD size = 0;
    if (GetFileSecurityW(path, parts, nullptr, 0, &size) != FALSE ||
        last_error() != ERROR_INSUFFICIENT_BUFFER)
        return descriptor;
    descriptor.resize(size);
    if (GetFileSecurityW(path, parts, descriptor.data(), size, &size) == FALSE) descriptor.clear();
    return descriptor;
}

// The process as someone whose access can be checked; none on failure.
KernelHandle impersonation_token() {
    HANDLE process_token = nullptr;
    if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY | TOKEN_DUPLICATE | TOKEN_IMPERSONATE,
                         &process_token) == FALSE)
        return {};
    const KernelHandle owner(process_token);
    HANDLE copy = nullptr;
    return KernelHandle(DuplicateToken(process_token, SecurityImpersonation, &copy) != FALSE ? copy
                                                                                             : nullptr);
}

bool grants_reading_and_writing(PSECURITY_DESCRIPTOR descriptor, HANDLE token) {
    GENERIC_MAPPING mapping = {FILE_GENERIC_READ, FILE_GENERIC_WRITE, FILE_GENERIC_EXECUTE, FILE_ALL_ACCESS};
    DWORD wanted = GENERIC_READ | GENERIC_WRITE;
    MapGenericMask(&wanted, &mapping);
    PRIVILEGE_SET privileges = {};
    DWORD privileges_size = sizeof privileges;
    DWORD granted = 0;
    BOOL access = FALSE;
    return AccessCheck(descriptor, token, wanted, &mapping, &privileges, &privileges_size, &granted,
                       &access) != FALSE &&
           access != FALSE;
}

// As root a read-only file opens for writing all the same, hence the look at its attribute.
bool opens_for_writing(const wchar_t* path) {
    const DWORD attributes = GetFileAttributesW(path);
    if (attributes == INVALID_FILE_ATTRIBUTES) return true; // nothing there that could refuse
    if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) return false;
    constexpr DWORD kNoSharing = 0;
    return static_cast<bool>(FileHandle(
        CreateFileW(path, GENERIC_READ | GENERIC_WRITE, kNoSharing, nullptr, OPEN_EXISTING,
                    FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE | FILE_FLAG_RANDOM_ACCESS, nullptr)));
}

} // namespace

} // namespace qzr

int Fio_GetSecurityInfo(const wchar_t* path, CXStringW& owner) {
    auto descriptor = qzr::security_of(path, OWNER_SECURITY_INFORMATION);
    PSID sid = nullptr;
    BOOL by_default = FALSE;
    if (descriptor.empty() || GetSecurityDescriptorOwner(descriptor.data(), &sid, &by_default) == FALSE ||
        sid == nullptr)
        return 0;
    constexpr DWORD kMostUnits = 512;
    wchar_t account[kMostUnits] = L"";
    wchar_t domain[kMostUnits] = L"";
    DWORD account_units = kMostUnits;
    DWORD domain_units = kMostUnits;
    SID_NAME_USE use = SidTypeUnknown;
    if (LookupAccountSidW(nullptr, sid, account, &account_units, domain, &domain_units, &use) == FALSE)
        return 0;
    owner = CXStringW(account) + L" " + domain;
    return 1;
}

int Fio_IsWritableDir(const wchar_t* path) {
    if (qzr::is_url_path(path)) return Fio_UrlIsWritableDir(path);
    constexpr SECURITY_INFORMATION kParts =
        OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;
    auto descriptor = qzr::security_of(path, kParts);
    const qzr::KernelHandle token = qzr::impersonation_token();
    return !descriptor.empty() && token && qzr::grants_reading_and_writing(descriptor.data(), token.get())
               ? 1
               : 0;
}

int Fio_IsWritableFile(const wchar_t* path) {
    if (qzr::is_memory_path(path)) return 1;
    if (qzr::is_url_path(path)) return Fio_UrlIsWritableFile(path);
    try {
        Fio_ChangeNELock(path, true);
    } catch (const CXFileException&) {
        return 0; // locked exclusively
    }
    const int writable = qzr::opens_for_writing(path) ? 1 : 0;
    Fio_ChangeNELock(path, false);
    return writable;
}

int Fio_IsWritableFile(const wchar_t* path, CXStringW& /*owner*/) { return Fio_IsWritableFile(path); }
