#include "string/multibyte.h"

#include "core/windows_lean.h"
#include "string/scan.h"

#include <atomic>

#include <mbctype.h>

namespace qzr {
namespace {

constexpr int kFree = 0; // page 0 itself is a single-byte one and never looked up
constexpr int kBeingFilled = -1;

// Lead bytes of a code page that was met before. An entry is filled once and never changed, so it is read
// without a lock whatever page another thread switches to.
struct KnownPage {
    std::atomic<int> page{kFree};
    std::uint64_t bits[2] = {0, 0};
};
constinit KnownPage known_pages[8];

// From the system, which is told the page. The runtime has the same lead bytes, but only those of its current
// page: another thread may change that between the question for its number and the one for its bytes.
LeadBytes learn(int page) {
    std::uint64_t bits[2] = {0, 0};
    CPINFO info = {};
    if (GetCPInfo(static_cast<UINT>(page), &info) == FALSE) return {};
    for (int i = 0; i + 1 < MAX_LEADBYTES && info.LeadByte[i] != 0; i += 2)
        for (unsigned c = info.LeadByte[i]; c <= info.LeadByte[i + 1]; ++c)
            bits[(c >> 6) & 1] |= std::uint64_t{1} << (c & 63);
    for (KnownPage& entry : known_pages) {
        int found = kFree;
        if (!entry.page.compare_exchange_strong(found, kBeingFilled)) {
            if (found == page) break;
            continue;
        }
        entry.bits[0] = bits[0];
        entry.bits[1] = bits[1];
        entry.page.store(page, std::memory_order_release);
        break;
    }
    return {bits[0], bits[1]};
}

// Occurrences of one byte that start a character.
template <class Find>
const char* find_start(const char* begin, const char* p, const LeadBytes& leads, Find next) {
    while (p != nullptr && !mb_is_start(begin, p, leads))
        p = next(p);
    return p;
}

} // namespace

LeadBytes lead_bytes() noexcept {
    const int page = _getmbcp();
    if (page <= 0) return {};
    for (const KnownPage& entry : known_pages) {
        const int known = entry.page.load(std::memory_order_acquire);
        if (known == page) return {entry.bits[0], entry.bits[1]};
        if (known == kFree) break;
    }
    return learn(page);
}

LeadBytes lead_bytes_in(const char* begin, const char* end) noexcept {
    return skip_ascii(begin, end) == end ? LeadBytes() : lead_bytes();
}

// A byte that is no lead byte ends a character, whichever it belongs to; the lead bytes between it and p pair
// up.
bool mb_is_start(const char* begin, const char* p, const LeadBytes& leads) noexcept {
    const char* run = p;
    while (run != begin && leads(run[-1]))
        --run;
    return (p - run) % 2 == 0;
}

const char* mb_last(const char* begin, const char* end, const LeadBytes& leads) noexcept {
    const char* const last = end - 1;
    return mb_is_start(begin, last, leads) ? last : last - 1;
}

std::size_t mb_count(const char* begin, const char* end, const LeadBytes& leads) noexcept {
    if (!leads.any()) return static_cast<std::size_t>(end - begin);
    std::size_t count = 0;
    while (begin != end) {
        const char* const high = skip_ascii(begin, end);
        count += static_cast<std::size_t>(high - begin);
        for (begin = high; begin != end && *begin < 0; ++count)
            begin += leads(*begin) && begin + 1 != end ? 2 : 1;
    }
    return count;
}

const char* mb_advance(const char* begin, const char* end, std::uint64_t count,
                       const LeadBytes& leads) noexcept {
    if (!leads.any()) return count < static_cast<std::uint64_t>(end - begin) ? begin + count : end;
    while (begin != end && count != 0) {
        const char* const high = skip_ascii(begin, end);
        const auto run = static_cast<std::uint64_t>(high - begin);
        if (run >= count) return begin + count;
        count -= run;
        for (begin = high; begin != end && *begin < 0 && count != 0; --count)
            begin += leads(*begin) && begin + 1 != end ? 2 : 1;
    }
    return begin;
}

const char* mb_find(const char* begin, const char* end, char c, const LeadBytes& leads) noexcept {
    return find_start(begin, find_byte(begin, end, c), leads,
                      [=](const char* p) { return find_byte(p + 1, end, c); });
}

const char* mb_find_last(const char* begin, const char* end, char c, const LeadBytes& leads) noexcept {
    return find_start(begin, find_last_byte(begin, end, c), leads,
                      [=](const char* p) { return find_last_byte(begin, p, c); });
}

const char* mb_find_last_of(const char* begin, const char* end, const char* set,
                            const LeadBytes& leads) noexcept {
    while (end != begin) {
        --end;
        for (const char* member = set; *member != 0; ++member)
            if (*end == *member && mb_is_start(begin, end, leads)) return end;
    }
    return nullptr;
}

// A text that ends in a lead byte matches at the very end alone: elsewhere that byte is half a character.
// `start` is the last place known to start a character, so that no byte is looked at again and again.
const char* mb_find_text(const char* begin, const char* end, const char* text, std::size_t n,
                         const LeadBytes& leads) noexcept {
    if (!leads.any() || n == 0) return find_text(begin, end, text, n);
    const bool incomplete = leads(text[n - 1]) && mb_is_start(text, text + n - 1, leads);
    const char* start = begin;
    for (const char* p = begin; (p = find_text(p, end, text, n)) != nullptr; ++p) {
        const bool is_start = mb_is_start(start, p, leads);
        if (is_start && (!incomplete || p + n == end)) return p;
        start = is_start ? p : p + 1;
    }
    return nullptr;
}

MbChar mb_encode(wchar_t c, const LeadBytes& leads) noexcept {
    const char high = static_cast<char>(c >> 8);
    const char low = static_cast<char>(c & 0xFF);
    if (leads(high)) return {{high, low, 0}, low != 0 ? 2U : 1U};
    return {{low, 0, 0}, low != 0 ? 1U : 0U};
}

} // namespace qzr
