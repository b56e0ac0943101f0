// CXString: comparing. Order and case are the runtime's; what both texts share byte for byte, or but for the
// case of ASCII letters, is passed over first, and the runtime is asked from the first difference on.
#include "qzstring.h"
#include "string/ascii_case.h"
#include "string/multibyte.h"
#include "string/scan.h"

#include <algorithm>
#include <climits>

#include <mbstring.h>

using namespace qzr;

namespace {

using Bytes = const unsigned char*;

constexpr int kInvalidParameter = INT_MAX; // what the runtime answers to null

Bytes bytes(const char* p) { return reinterpret_cast<Bytes>(p); }

// One character alone. The runtime steps over a terminator behind a lead byte, so it never gets to see a text
// that may end in one.
struct SingleCharacter {
    SingleCharacter(const char* p, const LeadBytes& leads) {
        const auto size = static_cast<std::size_t>(mb_next(p, leads) - p);
        std::copy_n(p, size, text);
    }
    char text[4] = {0, 0, 0, 0};
};

// Where the characters of both texts first differ.
std::size_t difference(const char* a, const char* b, const LeadBytes& leads) {
    const std::size_t shorter = std::min(text_length(a), text_length(b));
    std::size_t at = common_prefix(a, b, shorter);
    if (leads.any() && !mb_is_start(a, a + at, leads)) {
        const bool both_end = a[at] == 0 && b[at] == 0;
        if (!both_end) --at;
    }
    return at;
}

std::size_t characters(const char* a, std::size_t bytes_seen, const LeadBytes& leads) {
    return mb_count(a, a + bytes_seen, leads);
}

// No limit on the characters compared, and every negative count.
constexpr std::size_t kAll = SIZE_MAX;

std::size_t limit_of(int n) { return n < 0 ? kAll : static_cast<std::size_t>(n); }

int compare(const char* a, const char* b, std::size_t limit) {
    if (b == nullptr) return kInvalidParameter;
    const LeadBytes leads = lead_bytes();
    const std::size_t at = difference(a, b, leads);
    if (a[at] == b[at] && a[at] == 0) return 0;
    if (limit != kAll && characters(a, at, leads) >= limit) return 0;
    return _mbscmp(bytes(SingleCharacter(a + at, leads).text), bytes(SingleCharacter(b + at, leads).text));
}

// Single-byte pages: no step can pass a terminator, so the runtime may have the rest at once.
int compare_rest(const char* a, const char* b, std::size_t limit) {
    return limit == kAll ? _mbsicmp(bytes(a), bytes(b)) : _mbsnicmp(bytes(a), bytes(b), limit);
}

// What is left to compare of two texts.
struct Rest {
    const char* a;
    const char* a_end;
    const char* b;
    const char* b_end;
    std::size_t limit;

    // Passes over what is ASCII and alike without case. @return whether nothing is left
    bool skip_alike() {
        const auto shorter = static_cast<std::size_t>(std::min(a_end - a, b_end - b));
        const std::size_t same = common_ascii_prefix(a, b, std::min(shorter, limit));
        a += same;
        b += same;
        if (limit != kAll) limit -= same;
        return limit == 0 || (a == a_end && b == b_end);
    }
};

int compare_without_case(const char* a, const char* b, std::size_t limit) {
    if (b == nullptr) return kInvalidParameter;
    Rest rest{a, a + text_length(a), b, b + text_length(b), limit};
    if (rest.skip_alike()) return 0;
    const LeadBytes leads = lead_bytes();
    if (!leads.any()) return compare_rest(rest.a, rest.b, rest.limit);
    do {
        const int order =
            _mbsicmp(bytes(SingleCharacter(rest.a, leads).text), bytes(SingleCharacter(rest.b, leads).text));
        if (order != 0 || rest.a == rest.a_end || rest.b == rest.b_end) return order;
        rest.a = mb_next(rest.a, leads);
        rest.b = mb_next(rest.b, leads);
        if (rest.limit != kAll) --rest.limit;
    } while (!rest.skip_alike());
    return 0;
}

} // namespace

int CXString::Compare(const char* s) const { return compare(m_pszData, s, kAll); }

int CXString::CompareI(const char* s) const { return compare_without_case(m_pszData, s, kAll); }

int CXString::CompareN(const char* s, int n) const { return n == 0 ? 0 : compare(m_pszData, s, limit_of(n)); }

int CXString::CompareIN(const char* s, int n) const {
    return n == 0 ? 0 : compare_without_case(m_pszData, s, limit_of(n));
}
