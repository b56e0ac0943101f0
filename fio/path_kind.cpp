#include "fio/path_kind.h"

#include "core/windows_lean.h"

#include <cwchar>
#include <iterator>

#include <shlwapi.h>

namespace qzr {

namespace {

constexpr wchar_t kMemoryPrefix[] = L"fmem::";
constexpr std::size_t kMemoryPrefixLength = std::size(kMemoryPrefix) - 1;
constexpr wchar_t kNumberDelimiters[] = L",.";

// The number at the start of the next token, and p moved behind that token.
int next_number(const wchar_t*& p) {
    p += std::wcsspn(p, kNumberDelimiters);
    const int number = _wtoi(p);
    p += std::wcscspn(p, kNumberDelimiters);
    return number;
}

} // namespace

bool is_memory_path(const wchar_t* path) noexcept {
    return path != nullptr && _wcsnicmp(path, kMemoryPrefix, kMemoryPrefixLength) == 0;
}

bool is_url_path(const wchar_t* path) noexcept {
    return path != nullptr && !is_memory_path(path) && PathIsURLW(path) != FALSE;
}

MemoryBlockName parse_memory_path(const wchar_t* path) {
    const wchar_t* p = path + kMemoryPrefixLength;
    const int address = next_number(p);
    return {address, next_number(p)};
}

} // namespace qzr
