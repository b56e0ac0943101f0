// Stepping through narrow text: the one place that knows lead and trail bytes. A character is a byte, or a
// lead byte and the byte behind it in the process's multibyte code page. A lead byte right before the end of
// a text is a character of its own, so no step passes a terminator.
//
// ASCII bytes are never lead bytes, in any code page, but some are trail bytes ("\" in code page 932).
#pragma once

#include <cstddef>
#include <cstdint>

namespace qzr {

// The lead bytes of one code page, all at or above 0x80.
class LeadBytes {
public:
    constexpr LeadBytes() = default;
    constexpr LeadBytes(std::uint64_t from_80, std::uint64_t from_c0) : bits_{from_80, from_c0} {}

    bool any() const { return (bits_[0] | bits_[1]) != 0; }
    bool operator()(char byte) const {
        const unsigned c = static_cast<unsigned char>(byte);
        return c >= 0x80 && ((bits_[(c >> 6) & 1] >> (c & 63)) & 1) != 0;
    }

private:
    std::uint64_t bits_[2] = {0, 0};
};

// Those of the current multibyte code page; none when it is a single-byte one.
LeadBytes lead_bytes() noexcept;

// The same for going through [begin, end) alone: none when it is ASCII. Finding that out is cheaper than
// asking the runtime for its code page, unless the text is longer than a few hundred bytes.
LeadBytes lead_bytes_in(const char* begin, const char* end) noexcept;

inline bool code_page_is_single_byte() noexcept { return !lead_bytes().any(); }
inline bool is_lead(unsigned char c) noexcept { return lead_bytes()(static_cast<char>(c)); }

// The next character; p itself at the terminator.
inline const char* mb_next(const char* p, const LeadBytes& leads) noexcept {
    if (*p == 0) return p;
    return p + (leads(*p) && p[1] != 0 ? 2 : 1);
}
inline const char* mb_next(const char* p) noexcept { return mb_next(p, lead_bytes()); }

// Whether a character starts at p, which lies in a text that starts at begin and has not ended before p. The
// end itself counts as a start only behind a complete character.
bool mb_is_start(const char* begin, const char* p, const LeadBytes& leads) noexcept;

// The character before the end of [begin, end), which is not empty.
const char* mb_last(const char* begin, const char* end, const LeadBytes& leads) noexcept;

// Characters in [begin, end); end is the terminator or starts a character.
std::size_t mb_count(const char* begin, const char* end, const LeadBytes& leads) noexcept;

// The character `count` characters on, or end.
const char* mb_advance(const char* begin, const char* end, std::uint64_t count,
                       const LeadBytes& leads) noexcept;

// The first and the last character of [begin, end) that is the ASCII character c; null when there is none.
const char* mb_find(const char* begin, const char* end, char c,
                    const LeadBytes& leads = lead_bytes()) noexcept;
const char* mb_find_last(const char* begin, const char* end, char c,
                         const LeadBytes& leads = lead_bytes()) noexcept;

// The last character that is one of the ASCII characters of set; null when there is none.
const char* mb_find_last_of(const char* begin, const char* end, const char* set,
                            const LeadBytes& leads = lead_bytes()) noexcept;

// The first occurrence of a text that starts and ends with whole characters; null when there is none.
const char* mb_find_text(const char* begin, const char* end, const char* text, std::size_t n,
                         const LeadBytes& leads = lead_bytes()) noexcept;

// The character at p as a number, (lead << 8) | trail for two bytes; 0 at the terminator.
inline wchar_t mb_value(const char* p, const LeadBytes& leads) noexcept {
    const auto first = static_cast<unsigned char>(p[0]);
    if (!leads(p[0]) || p[1] == 0) return first;
    return static_cast<wchar_t>(first << 8 | static_cast<unsigned char>(p[1]));
}

// A character as bytes, zero-terminated: two of them when its high byte is a lead byte, else the low byte
// alone.
struct MbChar {
    char bytes[3];
    unsigned size; // bytes before the first zero
};
MbChar mb_encode(wchar_t c, const LeadBytes& leads) noexcept;

} // namespace qzr
