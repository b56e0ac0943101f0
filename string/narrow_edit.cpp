// CXString: editing.
#include "string/ascii_case.h"
#include "string/multibyte.h"
#include "string/range.h"
#include "string/string_access.h"

#include <cctype>

#include <mbstring.h>

using namespace qzr;

namespace {

// A range in bytes.
struct ByteRange {
    std::size_t length; // of the whole text
    std::size_t at;
    std::size_t size;
};

ByteRange bytes_of(const char* text, int pos, int count) {
    const auto [length, ascii] = measure_text(text);
    if (ascii) {
        const Range range = range_of(static_cast<std::int64_t>(length), pos, count);
        return {length, static_cast<std::size_t>(range.first),
                static_cast<std::size_t>(range.last - range.first)};
    }
    const char* const end = text + length;
    const LeadBytes leads = lead_bytes();
    const Range range = range_of(static_cast<std::int64_t>(mb_count(text, end, leads)), pos, count);
    const char* const first = mb_advance(text, end, range.first, leads);
    const char* const last = mb_advance(first, end, range.last - range.first, leads);
    return {length, static_cast<std::size_t>(first - text), static_cast<std::size_t>(last - first)};
}

// Of the first n characters of a text of `length` bytes.
std::size_t bytes_before(const char* text, std::size_t length, std::size_t n) {
    if (n >= length) return length;
    return static_cast<std::size_t>(mb_advance(text, text + length, n, lead_bytes_in(text, text + n)) - text);
}

bool is_space(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x80 ? byte == ' ' || (byte >= '\t' && byte <= '\r') : std::isspace(byte) != 0;
}

// Trimming ends the writing that GetBuffer began, like ReleaseBuffer.
void unlock(char* text) {
    if (!is_empty_text(text)) header_of(text)->count = 1;
}

// The runtime's case mapping steps over a terminator behind a lead byte, so such a byte is hidden from it.
template <class Map>
void map_beyond_ascii(char* text, char* end, Map map) {
    const LeadBytes leads = lead_bytes();
    char* const last = end - 1;
    const bool incomplete = leads.any() && leads(*last) && mb_is_start(text, last, leads);
    if (!incomplete) {
        map(reinterpret_cast<unsigned char*>(text));
        return;
    }
    const char hidden = *last;
    *last = 0;
    map(reinterpret_cast<unsigned char*>(text));
    *last = hidden;
}

} // namespace

CXString& CXString::Insert(int pos, const char* s) {
    const std::size_t added = length_or_0(s);
    if (added == 0) return *this;
    const std::size_t length = text_length(m_pszData);
    const std::size_t at = bytes_before(m_pszData, length, static_cast<unsigned>(pos));
    insert_text(m_pszData, length, at, s, added);
    return *this;
}

CXString& CXString::Insert(int pos, wchar_t c) { return Insert(pos, mb_encode(c, lead_bytes()).bytes); }

CXString& CXString::Delete(int pos, int count) {
    const ByteRange range = bytes_of(m_pszData, pos, count);
    if (range.size != 0)
        edit_text<char>(m_pszData,
                        {range.length, range.at, range.size, nullptr, 0, std::uint64_t{range.length} + 1});
    return *this;
}

CXString& CXString::Replace(int pos, int count, const char* s) {
    if (s == nullptr || *s == 0) return *this;
    const ByteRange range = bytes_of(m_pszData, pos, count);
    if (range.size == 0) return *this;
    const std::size_t added = text_length(s);
    const std::uint64_t room = std::uint64_t{range.length} - range.size + added + 1;
    edit_text<char>(m_pszData, {range.length, range.at, range.size, s, added, room, true});
    return *this;
}

int CXString::Extract(int pos, int count) { return Extract(pos, count, *this); }

int CXString::Extract(int pos, int count, CXString& out) const {
    const ByteRange range = bytes_of(m_pszData, pos, count);
    if (range.size == 0)
        out.Release();
    else
        CXStringAccess::adopt(out,
                              new_text_copy(m_pszData + range.at, range.size, std::uint64_t{range.size} + 1));
    return static_cast<int>(range.size);
}

void CXString::TrimLeft() {
    const std::size_t length = text_length(m_pszData);
    std::size_t spaces = 0;
    while (is_space(m_pszData[spaces]))
        ++spaces;
    edit_text<char>(m_pszData, {length, 0, spaces, nullptr, 0, std::uint64_t{length} + 2});
    unlock(m_pszData);
}

void CXString::TrimRight() {
    const auto [length, ascii] = measure_text(m_pszData);
    const LeadBytes leads = ascii ? LeadBytes() : lead_bytes();
    const char* end = m_pszData + length;
    while (end != m_pszData) {
        const char* const last = ascii ? end - 1 : mb_last(m_pszData, end, leads);
        if (!is_space(*last)) break;
        end = last;
    }
    const auto kept = static_cast<std::size_t>(end - m_pszData);
    edit_text<char>(m_pszData, {length, kept, length - kept, nullptr, 0, std::uint64_t{length} + 2});
    unlock(m_pszData);
}

// Room for a mapping that lengthens the text.
void CXString::Upper() {
    const std::size_t length = text_length(m_pszData);
    if (length == 0) return;
    reserve_text(m_pszData, std::uint64_t{length} * 2 + 2);
    char* const end = m_pszData + length;
    char* const rest = ascii_upper(m_pszData, end);
    if (rest != end) map_beyond_ascii(rest, end, _mbsupr);
    unlock(m_pszData);
}

void CXString::Lower() {
    const std::size_t length = text_length(m_pszData);
    if (length == 0) return;
    reserve_text(m_pszData, std::uint64_t{length} * 2 + 2);
    char* const end = m_pszData + length;
    char* const rest = ascii_lower(m_pszData, end);
    if (rest != end) map_beyond_ascii(rest, end, _mbslwr);
    unlock(m_pszData);
}

void CXString::FreeExtra() {}
void CXString::CharToOemA() {}
void CXString::OemToCharA() {}
