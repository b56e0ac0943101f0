// CXStringW: comparing, by units; case is the runtime's from the first difference on.
#include "qzstring.h"
#include "string/ascii_case.h"
#include "string/scan.h"

#include <algorithm>
#include <cstdint>
#include <cwchar>

using namespace qzr;

namespace {

std::size_t limit_of(int n) { return n < 0 ? SIZE_MAX : static_cast<std::size_t>(n); }

int compare(const wchar_t* a, const wchar_t* b, std::size_t limit) {
    if (b == nullptr) return 1;
    const std::size_t shorter = std::min({text_length(a), text_length(b), limit});
    const std::size_t at = common_prefix(a, b, shorter);
    if (at == limit || a[at] == b[at]) return 0;
    return a[at] < b[at] ? -1 : 1;
}

int compare_without_case(const wchar_t* a, const wchar_t* b, std::size_t limit) {
    if (b == nullptr) return 1;
    const std::size_t shorter = std::min({text_length(a), text_length(b), limit});
    const std::size_t at = common_ascii_prefix(a, b, shorter);
    if (at == limit || (a[at] == 0 && b[at] == 0)) return 0;
    return limit == SIZE_MAX ? _wcsicmp(a + at, b + at) : _wcsnicmp(a + at, b + at, limit - at);
}

} // namespace

int CXStringW::Compare(const wchar_t* s) const { return compare(m_pszData, s, SIZE_MAX); }

int CXStringW::CompareI(const wchar_t* s) const { return compare_without_case(m_pszData, s, SIZE_MAX); }

int CXStringW::CompareN(const wchar_t* s, int n) const { return compare(m_pszData, s, limit_of(n)); }

int CXStringW::CompareIN(const wchar_t* s, int n) const {
    return compare_without_case(m_pszData, s, limit_of(n));
}
