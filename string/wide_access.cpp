// CXStringW: measuring and reading.
#include "qzstring.h"
#include "string/scan.h"

#include <algorithm>
#include <cstring>

using namespace qzr;

namespace {

unsigned copy_out(wchar_t* dst, const wchar_t* text, std::size_t units) {
    std::memcpy(dst, text, units * sizeof(wchar_t));
    dst[units] = 0;
    return static_cast<unsigned>(units);
}

} // namespace

unsigned CXStringW::GetSize() const { return static_cast<unsigned>(text_length(m_pszData)); }

unsigned CXStringW::GetLength() const { return GetSize(); }

unsigned CXStringW::GetSize(unsigned n) const { return std::min(n, GetSize()); }

unsigned CXStringW::GetSize(unsigned start, unsigned n) const {
    const unsigned size = GetSize();
    return std::min(n, size - std::min(start, size));
}

const wchar_t* CXStringW::GetData(unsigned i) const { return i == 0 ? m_pszData : m_pszData + GetSize(i); }

wchar_t CXStringW::GetAt(unsigned i) const { return *GetData(i); }

unsigned CXStringW::Copy(wchar_t* dst) const {
    return dst != nullptr ? copy_out(dst, m_pszData, GetSize()) : 0;
}

unsigned CXStringW::Copy(wchar_t* dst, unsigned n) const {
    return dst != nullptr ? copy_out(dst, m_pszData, GetSize(n)) : 0;
}

unsigned CXStringW::CopyFit(wchar_t* dst, unsigned size) const {
    if (dst == nullptr || size == 0) return 0;
    return copy_out(dst, m_pszData, GetSize(size - 1));
}
