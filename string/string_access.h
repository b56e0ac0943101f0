// The library's own way to the text pointer of a string.
#pragma once

#include "qzstring.h"
#include "string/text_block.h"

struct CXStringAccess {
    // Takes over a block of count 1, made by qzr::new_text, or the empty text.
    static void adopt(CXString& s, char* text) noexcept { qzr::replace_text(s.m_pszData, text); }
    static void adopt(CXStringW& s, wchar_t* text) noexcept { qzr::replace_text(s.m_pszData, text); }

    static void reserve(CXString& s, std::uint64_t n) { qzr::reserve_text(s.m_pszData, n); }
    static void reserve(CXStringW& s, std::uint64_t n) { qzr::reserve_text(s.m_pszData, n); }

    static char* text(CXString& s) noexcept { return s.m_pszData; }
    static wchar_t* text(CXStringW& s) noexcept { return s.m_pszData; }

    static void edit(CXString& s, const qzr::TextEdit<char>& e) { qzr::edit_text(s.m_pszData, e); }
    static void edit(CXStringW& s, const qzr::TextEdit<wchar_t>& e) { qzr::edit_text(s.m_pszData, e); }

    static void clear(CXString& s) noexcept { qzr::release_text(s.m_pszData); }
    static void clear(CXStringW& s) noexcept { qzr::release_text(s.m_pszData); }
};

namespace qzr {

// A string around a block of count 1.
inline CXString string_of(char* text) {
    CXString s;
    CXStringAccess::adopt(s, text);
    return s;
}
inline CXStringW string_of(wchar_t* text) {
    CXStringW s;
    CXStringAccess::adopt(s, text);
    return s;
}

} // namespace qzr
