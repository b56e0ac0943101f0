// CXStringW: searching and replacing what was found.
#include "string/string_access.h"

#include <algorithm>

using namespace qzr;

namespace {

struct Haystack {
    const wchar_t* begin;
    const wchar_t* end;

    explicit Haystack(const wchar_t* text) : begin(text), end(text + text_length(text)) {}

    // A negative start is beyond any end.
    const wchar_t* from(int start) const {
        return begin + std::min(static_cast<std::size_t>(static_cast<unsigned>(start)),
                                static_cast<std::size_t>(end - begin));
    }
    int index(const wchar_t* p) const { return p != nullptr ? static_cast<int>(p - begin) : -1; }
};

int replace_first(CXStringW& s, const wchar_t* find, std::size_t find_units, const wchar_t* repl,
                  std::size_t repl_units) {
    const Haystack text(s.GetData());
    const auto length = static_cast<std::size_t>(text.end - text.begin);
    const std::uint64_t room = std::uint64_t{length} + 1 + repl_units;
    const wchar_t* const p = length != 0 ? find_text(text.begin, text.end, find, find_units) : nullptr;
    if (p == nullptr) {
        CXStringAccess::reserve(s, room);
        return 0;
    }
    const auto at = static_cast<std::size_t>(p - text.begin);
    CXStringAccess::edit(s, {length, at, find_units, repl, repl_units, room});
    return 1;
}

// Units of a character given as one unit; zero is no character.
std::size_t one(wchar_t c) { return c != 0 ? 1 : 0; }

} // namespace

int CXStringW::Find(const wchar_t* s, int start) const {
    if (*m_pszData == 0 || s == nullptr) return -1;
    const Haystack text(m_pszData);
    return text.index(find_text(text.from(start), text.end, s, text_length(s)));
}

int CXStringW::Find(wchar_t c, int start) const {
    if (*m_pszData == 0) return -1;
    const Haystack text(m_pszData);
    return text.index(c != 0 ? find_unit(text.from(start), text.end, c) : text.end);
}

int CXStringW::FindI(const wchar_t* s) const {
    if (s == nullptr || *s == 0 || *m_pszData == 0) return -1;
    CXStringW text(*this);
    CXStringW wanted(s);
    text.Lower();
    wanted.Lower();
    return text.Find(wanted.GetData(), 0);
}

int CXStringW::FindOnOf(const wchar_t* set, int start) const {
    if (*m_pszData == 0 || set == nullptr) return -1;
    const Haystack text(m_pszData);
    const wchar_t* const set_end = set + text_length(set);
    for (const wchar_t* p = text.from(start); p != text.end; ++p)
        if (find_unit(set, set_end, *p) != nullptr) return text.index(p);
    return -1;
}

int CXStringW::FindRev(wchar_t c) const {
    if (*m_pszData == 0) return -1;
    const Haystack text(m_pszData);
    return text.index(c != 0 ? find_last_unit(text.begin, text.end, c) : text.end);
}

int CXStringW::FindRevOnOf(const wchar_t* set) const {
    if (set == nullptr) return -1;
    const Haystack text(m_pszData);
    const wchar_t* const set_end = set + text_length(set);
    for (const wchar_t* p = text.end; p != text.begin;)
        if (find_unit(set, set_end, *--p) != nullptr) return text.index(p);
    return -1;
}

int CXStringW::FindReplace(const wchar_t* find, const wchar_t* repl) {
    if (find == nullptr) return 0;
    return replace_first(*this, find, text_length(find), repl, length_or_0(repl));
}

int CXStringW::FindReplace(const wchar_t* find, wchar_t repl) {
    if (find == nullptr) return 0;
    return replace_first(*this, find, text_length(find), &repl, one(repl));
}

int CXStringW::FindReplace(wchar_t find, const wchar_t* repl) {
    return replace_first(*this, &find, one(find), repl, length_or_0(repl));
}

int CXStringW::FindReplace(wchar_t find, wchar_t repl) {
    return replace_first(*this, &find, one(find), &repl, one(repl));
}
