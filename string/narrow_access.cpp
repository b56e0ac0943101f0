// CXString: measuring and reading.
#include "qzstring.h"
#include "string/multibyte.h"
#include "string/scan.h"

#include <algorithm>
#include <cstring>

using namespace qzr;

namespace {

unsigned copy_out(char* dst, const char* text, std::size_t size) {
    std::memcpy(dst, text, size);
    dst[size] = 0;
    return static_cast<unsigned>(size);
}

} // namespace

unsigned CXString::GetSize() const { return static_cast<unsigned>(text_length(m_pszData)); }

unsigned CXString::GetLength() const {
    return static_cast<unsigned>(mb_count(m_pszData, m_pszData + GetSize(), lead_bytes()));
}

unsigned CXString::GetSize(unsigned n) const {
    return static_cast<unsigned>(mb_advance(m_pszData, m_pszData + GetSize(), n, lead_bytes()) - m_pszData);
}

unsigned CXString::GetSize(unsigned start, unsigned n) const {
    const LeadBytes leads = lead_bytes();
    const char* const end = m_pszData + GetSize();
    const char* const from = mb_advance(m_pszData, end, start, leads);
    return static_cast<unsigned>(mb_advance(from, end, n, leads) - from);
}

const char* CXString::GetData(unsigned i) const { return i == 0 ? m_pszData : m_pszData + GetSize(i); }

wchar_t CXString::GetAt(unsigned i) const { return mb_value(GetData(i), lead_bytes()); }

unsigned CXString::Copy(char* dst) const { return dst != nullptr ? copy_out(dst, m_pszData, GetSize()) : 0; }

unsigned CXString::Copy(char* dst, unsigned n) const {
    return dst != nullptr ? copy_out(dst, m_pszData, GetSize(n)) : 0;
}

unsigned CXString::CopyFit(char* dst, unsigned size) const {
    if (dst == nullptr || size == 0) return 0;
    const std::size_t length = GetSize();
    std::size_t fits = std::min<std::size_t>(size - 1, length);
    if (fits < length && !mb_is_start(m_pszData, m_pszData + fits, lead_bytes())) --fits;
    return copy_out(dst, m_pszData, fits);
}
