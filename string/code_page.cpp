#include "string/code_page.h"

#include "core/windows_lean.h"
#include "qzsupp.h"
#include "string/string_access.h"

#include <emmintrin.h>

namespace qzr {
namespace {

constexpr int kStackUnits = 512;

// The code pages in which Windows keeps ASCII as it is: the system's, and those of locales. Others (stateful
// ones, EBCDIC) are left to the platform from the first byte on.
bool keeps_ascii(unsigned code_page) {
    switch (code_page) {
    case CP_ACP:
    case 874:
    case 932:
    case 936:
    case 949:
    case 950:
    case CP_UTF8:
        return true;
    default:
        return code_page >= 1250 && code_page <= 1258;
    }
}

void widen_ascii(const char* from, std::size_t n, wchar_t* to) {
    std::size_t i = 0;
    for (; n - i >= 16; i += 16) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i));
        const __m128i zero = _mm_setzero_si128();
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i), _mm_unpacklo_epi8(v, zero));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i + 8), _mm_unpackhi_epi8(v, zero));
    }
    for (; i < n; ++i)
        to[i] = static_cast<unsigned char>(from[i]);
}

void narrow_ascii(const wchar_t* from, std::size_t n, char* to) {
    std::size_t i = 0;
    for (; n - i >= 16; i += 16) {
        const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i));
        const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i + 8));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i), _mm_packus_epi16(low, high));
    }
    for (; i < n; ++i)
        to[i] = static_cast<char>(from[i]);
}

// A wide text has room for a spare unit behind its terminator, a narrow one for the terminator alone.
void adopt_ascii(const char* text, std::size_t n, CXStringW& out) {
    wchar_t* const fresh = new_text<wchar_t>(std::uint64_t{n} + 2);
    widen_ascii(text, n, fresh);
    zero_rest(fresh, n);
    header_of(fresh)->length = static_cast<int>(n);
    CXStringAccess::adopt(out, fresh);
}

} // namespace

void narrow_to_wide(const char* text, unsigned code_page, CXStringW& out) {
    if (text == nullptr || *text == 0) return CXStringAccess::clear(out);
    const auto [length, ascii] = measure_text(text);
    if (ascii && keeps_ascii(code_page)) return adopt_ascii(text, length, out);
    if (length >= INT_MAX) throw CXMemException();
    // With the terminator, since a lead byte before it must not count as cut short.
    const int bytes = static_cast<int>(length) + 1;
    wchar_t buffer[kStackUnits];
    int units = MultiByteToWideChar(code_page, 0, text, bytes, buffer, kStackUnits);
    if (units > 0) {
        const std::size_t n = text_length(buffer, static_cast<std::size_t>(units));
        return CXStringAccess::adopt(out, new_text_copy(buffer, n, std::uint64_t{n} + 2));
    }
    units = MultiByteToWideChar(code_page, 0, text, bytes, nullptr, 0);
    if (units <= 0) return CXStringAccess::clear(out);
    wchar_t* const fresh = new_text<wchar_t>(static_cast<std::uint64_t>(units) + 1);
    const int written = MultiByteToWideChar(code_page, 0, text, bytes, fresh, units);
    zero_rest(fresh, static_cast<std::size_t>(written));
    header_of(fresh)->length = units;
    CXStringAccess::adopt(out, fresh);
}

void wide_to_narrow(const wchar_t* text, CXString& out) {
    if (text == nullptr || *text == 0) return CXStringAccess::clear(out);
    const auto [length, ascii] = measure_text(text);
    if (ascii) {
        char* const fresh = new_text<char>(std::uint64_t{length} + 1);
        narrow_ascii(text, length, fresh);
        fresh[length] = 0;
        return CXStringAccess::adopt(out, fresh);
    }
    if (length >= INT_MAX) throw CXMemException();
    const int units = static_cast<int>(length);
    char buffer[kStackUnits];
    int bytes = WideCharToMultiByte(CP_ACP, 0, text, units, buffer, kStackUnits, nullptr, nullptr);
    if (bytes > 0) {
        const auto n = static_cast<std::size_t>(bytes);
        return CXStringAccess::adopt(out, new_text_copy(buffer, n, std::uint64_t{n} + 1));
    }
    bytes = WideCharToMultiByte(CP_ACP, 0, text, units, nullptr, 0, nullptr, nullptr);
    if (bytes <= 0) return CXStringAccess::clear(out);
    char* const fresh = new_text<char>(static_cast<std::uint64_t>(bytes) + 1);
    const int written = WideCharToMultiByte(CP_ACP, 0, text, units, fresh, bytes, nullptr, nullptr);
    zero_rest(fresh, static_cast<std::size_t>(written));
    CXStringAccess::adopt(out, fresh);
}

} // namespace qzr

CXString::CXString(const wchar_t* text) : m_pszData(qzr::empty_text<char>()) {
    qzr::wide_to_narrow(text, *this);
}

CXStringW::CXStringW(const char* text) : m_pszData(qzr::empty_text<wchar_t>()) {
    hostMultiByteToUnicode(text, *this);
}

void hostMultiByteToUnicode(const char* text, CXStringW& out) {
    qzr::narrow_to_wide(text, Supp_GetACP(), out);
}
