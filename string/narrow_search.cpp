// CXString: searching and replacing what was found.
#include "string/multibyte.h"
#include "string/string_access.h"

using namespace qzr;

namespace {

// A text being searched: all positions lie in [begin, end].
struct Haystack {
    LeadBytes leads = lead_bytes();
    const char* begin;
    const char* end;

    explicit Haystack(const char* text) : begin(text), end(text + text_length(text)) {}

    // A negative start is beyond any end.
    const char* from(int start) const { return mb_advance(begin, end, static_cast<unsigned>(start), leads); }
    int index(const char* p) const { return p != nullptr ? static_cast<int>(mb_count(begin, p, leads)) : -1; }

    const char* find(const char* from, const char* s, std::size_t n) const {
        return mb_find_text(from, end, s, n, leads);
    }
};

// Membership of characters in a set given as text.
class CharacterSet {
public:
    CharacterSet(const char* set, const LeadBytes& leads) : leads_(leads), set_(set) {
        for (const char* p = set; *p != 0; p = mb_next(p, leads)) {
            const wchar_t c = mb_value(p, leads);
            if (c > 0xFF)
                has_pairs_ = true;
            else
                single_[c >> 6] |= std::uint64_t{1} << (c & 63);
        }
    }

    bool has(const char* p) const {
        const wchar_t c = mb_value(p, leads_);
        if (c <= 0xFF) return ((single_[c >> 6] >> (c & 63)) & 1) != 0;
        if (!has_pairs_) return false;
        for (const char* member = set_; *member != 0; member = mb_next(member, leads_))
            if (mb_value(member, leads_) == c) return true;
        return false;
    }

private:
    const LeadBytes& leads_;
    const char* set_;
    std::uint64_t single_[4] = {0, 0, 0, 0};
    bool has_pairs_ = false;
};

// Room for the replacement is made whether or not there is something to replace: callers see it in
// GetAllocSize and in a copy no longer being shared.
int replace_first(CXString& s, const char* find, std::size_t find_size, const char* repl,
                  std::size_t repl_size) {
    const Haystack text(s.GetData());
    const auto length = static_cast<std::size_t>(text.end - text.begin);
    const std::uint64_t room = std::uint64_t{length} + 1 + repl_size;
    const char* const p = length != 0 ? text.find(text.begin, find, find_size) : nullptr;
    if (p == nullptr) {
        CXStringAccess::reserve(s, room);
        return 0;
    }
    const auto at = static_cast<std::size_t>(p - text.begin);
    CXStringAccess::edit(s, {length, at, find_size, repl, repl_size, room});
    return 1;
}

} // namespace

int CXString::Find(const char* s, int start) const {
    if (*m_pszData == 0 || s == nullptr) return -1;
    const Haystack text(m_pszData);
    return text.index(text.find(text.from(start), s, text_length(s)));
}

int CXString::Find(wchar_t c, int start) const {
    if (*m_pszData == 0) return -1;
    const Haystack text(m_pszData);
    const MbChar wanted = mb_encode(c, text.leads);
    if (wanted.size == 0) return text.index(text.end); // the terminator, as the runtime has it
    return text.index(text.find(text.from(start), wanted.bytes, wanted.size));
}

int CXString::FindOnOf(const char* set, int start) const {
    if (*m_pszData == 0 || set == nullptr) return -1;
    const Haystack text(m_pszData);
    const CharacterSet members(set, text.leads);
    for (const char* p = text.from(start); p != text.end; p = mb_next(p, text.leads))
        if (members.has(p)) return text.index(p);
    return -1;
}

int CXString::FindRev(wchar_t c) const {
    if (*m_pszData == 0) return -1;
    const Haystack text(m_pszData);
    const MbChar wanted = mb_encode(c, text.leads);
    if (wanted.size == 0) return text.index(text.end);
    if (!text.leads.any()) return text.index(find_last_byte(text.begin, text.end, wanted.bytes[0]));
    const char* last = nullptr;
    for (const char* p = text.begin; (p = text.find(p, wanted.bytes, wanted.size)) != nullptr;
         p += wanted.size)
        last = p;
    return text.index(last);
}

int CXString::FindRevOnOf(const char* set) const {
    if (set == nullptr) return -1;
    const Haystack text(m_pszData);
    const CharacterSet members(set, text.leads);
    if (!text.leads.any()) {
        for (const char* p = text.end; p != text.begin;)
            if (members.has(--p)) return text.index(p);
        return -1;
    }
    const char* last = nullptr;
    for (const char* p = text.begin; p != text.end; p = mb_next(p, text.leads))
        if (members.has(p)) last = p;
    return text.index(last);
}

int CXString::FindReplace(const char* find, const char* repl) {
    if (find == nullptr) return 0;
    return replace_first(*this, find, text_length(find), repl, length_or_0(repl));
}

int CXString::FindReplace(const char* find, wchar_t repl) {
    if (find == nullptr) return 0;
    const MbChar by = mb_encode(repl, lead_bytes());
    return replace_first(*this, find, text_length(find), by.bytes, by.size);
}

int CXString::FindReplace(wchar_t find, const char* repl) {
    const MbChar wanted = mb_encode(find, lead_bytes());
    return replace_first(*this, wanted.bytes, wanted.size, repl, length_or_0(repl));
}

int CXString::FindReplace(wchar_t find, wchar_t repl) {
    const LeadBytes leads = lead_bytes();
    const MbChar wanted = mb_encode(find, leads);
    const MbChar by = mb_encode(repl, leads);
    return replace_first(*this, wanted.bytes, wanted.size, by.bytes, by.size);
}
