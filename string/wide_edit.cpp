// CXStringW: editing.
#include "string/ascii_case.h"
#include "string/range.h"
#include "string/string_access.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>

using namespace qzr;

namespace {

struct UnitRange {
    std::size_t length; // of the whole text
    std::size_t at;
    std::size_t size;
};

UnitRange units_of(const wchar_t* text, int pos, int count) {
    const std::size_t length = text_length(text);
    const Range range = range_of(static_cast<std::int64_t>(length), pos, count);
    return {length, static_cast<std::size_t>(range.first),
            static_cast<std::size_t>(range.last - range.first)};
}

bool is_space(wchar_t c) {
    return c < 0x80 ? c == L' ' || (c >= L'\t' && c <= L'\r') : std::iswspace(c) != 0;
}

// Trimming ends the writing that GetBuffer began, like ReleaseBuffer.
void unlock(wchar_t* text) {
    if (!is_empty_text(text)) header_of(text)->count = 1;
}

} // namespace

CXStringW& CXStringW::Insert(int pos, const wchar_t* s) {
    const std::size_t added = length_or_0(s);
    if (added == 0) return *this;
    const std::size_t length = GetSize();
    const std::size_t at = std::min<std::size_t>(static_cast<unsigned>(pos), length);
    insert_text(m_pszData, length, at, s, added);
    return *this;
}

CXStringW& CXStringW::Insert(int pos, wchar_t c) {
    const wchar_t text[2] = {c, 0};
    return Insert(pos, text);
}

CXStringW& CXStringW::Delete(int pos, int count) {
    const UnitRange range = units_of(m_pszData, pos, count);
    if (range.size != 0)
        edit_text<wchar_t>(m_pszData,
                           {range.length, range.at, range.size, nullptr, 0, std::uint64_t{range.length} + 1});
    return *this;
}

CXStringW& CXStringW::Replace(int pos, int count, const wchar_t* s) {
    if (s == nullptr || *s == 0) return *this;
    const UnitRange range = units_of(m_pszData, pos, count);
    if (range.size == 0) return *this;
    const std::size_t added = text_length(s);
    const std::uint64_t room = std::uint64_t{range.length} - range.size + added + 1;
    edit_text<wchar_t>(m_pszData, {range.length, range.at, range.size, s, added, room, true});
    return *this;
}

int CXStringW::Extract(int pos, int count) { return Extract(pos, count, *this); }

int CXStringW::Extract(int pos, int count, CXStringW& out) const {
    const UnitRange range = units_of(m_pszData, pos, count);
    if (range.size == 0)
        out.Release();
    else
        CXStringAccess::adopt(out,
                              new_text_copy(m_pszData + range.at, range.size, std::uint64_t{range.size} + 2));
    return static_cast<int>(range.size);
}

void CXStringW::TrimLeft() {
    const std::size_t length = GetSize();
    std::size_t spaces = 0;
    while (is_space(m_pszData[spaces]))
        ++spaces;
    edit_text<wchar_t>(m_pszData, {length, 0, spaces, nullptr, 0, std::uint64_t{length} + 2});
    unlock(m_pszData);
}

void CXStringW::TrimRight() {
    const std::size_t length = GetSize();
    std::size_t kept = length;
    while (kept != 0 && is_space(m_pszData[kept - 1]))
        --kept;
    edit_text<wchar_t>(m_pszData, {length, kept, length - kept, nullptr, 0, std::uint64_t{length} + 2});
    unlock(m_pszData);
}

// Room for a mapping that lengthens the text.
void CXStringW::Upper() {
    const std::size_t length = GetSize();
    if (length == 0) return;
    reserve_text(m_pszData, std::uint64_t{length} * 2 + 2);
    wchar_t* const end = m_pszData + length;
    wchar_t* const rest = ascii_upper(m_pszData, end);
    if (rest != end) _wcsupr(rest);
    unlock(m_pszData);
}

void CXStringW::Lower() {
    const std::size_t length = GetSize();
    if (length == 0) return;
    reserve_text(m_pszData, std::uint64_t{length} * 2 + 2);
    wchar_t* const end = m_pszData + length;
    wchar_t* const rest = ascii_lower(m_pszData, end);
    if (rest != end) _wcslwr(rest);
    unlock(m_pszData);
}

void CXStringW::FreeExtra() {}
void CXStringW::CharToOemA() {}
void CXStringW::OemToCharA() {}
