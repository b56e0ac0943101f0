#include "string/number_text.h"

#include "core/allocator.h"
#include "string/scan.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <system_error>

namespace qzr {
namespace {

constexpr int kDigits = 14;
constexpr int kRuntimeTextSize = 64; // more than _gcvt ever writes for 14 digits

bool is_digit(char c) { return c >= '0' && c <= '9'; }

int finish(char* begin, char* end) {
    *end = 0;
    return static_cast<int>(end - begin);
}

int copy_text(char* out, const char* text) {
    const std::size_t length = text_length(text);
    std::memcpy(out, text, length + 1);
    return static_cast<int>(length);
}

// --- reals to text

int special_text(char* out, double value) {
    if (std::isinf(value)) return copy_text(out, value < 0 ? "-1.#INF" : "1.#INF");
    // The runtime tells the quiet not-a-number that failed operations give from the others by its sign.
    return copy_text(out, std::signbit(value) ? "-1.#IND" : "1.#QNAN");
}

// Exponents have three digits: e+08 becomes e+008.
char* widen_exponent(char* begin, char* end) {
    char* const digits = end - 2;
    if (end - begin < 4 || (digits[-1] != '+' && digits[-1] != '-')) return end;
    digits[2] = digits[1];
    digits[1] = digits[0];
    digits[0] = '0';
    return end + 1;
}

// Whether a value lies in the middle between two texts of fourteen digits. Then it has fifteen digits, the
// last one a 5, so at most 21 binary places and fewer than 40 digits to look at. Behind the fifteen digits
// stand two zeroes at most: with more there are no such reals, since 5^3 times fifteen digits is beyond 2^53.
bool is_halfway(double value) {
    constexpr double kPlaces = 1 << 21;
    constexpr double kLargest = 1e17;
    constexpr int kExactDigits = 40;
    if (std::fabs(value) >= kLargest || std::trunc(value * kPlaces) != value * kPlaces) return false;
    char text[kExactDigits + 16];
    const char* const end =
        std::to_chars(text, text + sizeof text, std::fabs(value), std::chars_format::scientific, kExactDigits)
            .ptr;
    const char* const last = text + 1 + kDigits; // behind the first digit and the point stand the others
    if (*last != '5') return false;
    const char* behind = last + 1;
    while (behind != end && *behind == '0')
        ++behind;
    return *behind == 'e';
}

// Reals that are written without an exponent: most of those that are stored. A real is a whole number times a
// power of two, so fourteen digits of one this size come out exactly in 128 bits, for a third of what the
// general way costs.
namespace plain {

__extension__ using Wide = unsigned __int128;

constexpr double kSmallest = 1e-4;
constexpr double kTooLarge = 99999999999999.5; // rounded it has fifteen digits

constexpr int kMostPlaces = 18;
constexpr auto kPowersOfFive = [] {
    std::array<std::uint64_t, kMostPlaces + 1> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i)
        powers[i] = powers[i - 1] * 5;
    return powers;
}();

struct Digits {
    std::uint64_t digits;
    int places; // so many of the digits stand behind the point
};

// Rounded away from zero in the middle, as the runtime does.
Digits round(double magnitude) {
    constexpr std::uint64_t kBeyondDigits = 100000000000000;
    constexpr int kMantissaBits = 52;
    const auto bits = std::bit_cast<std::uint64_t>(magnitude);
    const std::uint64_t mantissa = (bits & ((1ull << kMantissaBits) - 1)) | (1ull << kMantissaBits);
    const int exponent = static_cast<int>(bits >> kMantissaBits) - 1023; // of two

    // The exponent of ten, or one less: log10(2) is 78913 / 2^18.
    int places = kDigits - 1 - ((exponent * 78913) >> 18);
    for (;; --places) {
        const Wide product = Wide{mantissa} * kPowersOfFive[static_cast<std::size_t>(places)];
        const int shift = kMantissaBits - exponent - places;
        if (static_cast<std::uint64_t>(product >> shift) >= kBeyondDigits) continue;
        return {static_cast<std::uint64_t>((product + (Wide{1} << (shift - 1))) >> shift), places};
    }
}

int text(char* out, double value) {
    Digits number = round(std::fabs(value));
    while (number.places > 0 && number.digits % 10 == 0) {
        number.digits /= 10;
        --number.places;
    }
    char* p = out;
    if (value < 0) *p++ = '-';
    char digits[kRealTextSize];
    const auto count =
        static_cast<int>(std::to_chars(digits, digits + sizeof digits, number.digits).ptr - digits);
    const int whole = count - number.places;
    if (whole <= 0) *p++ = '0';
    p = std::copy_n(digits, std::max(whole, 0), p);
    if (number.places > 0) {
        *p++ = '.';
        p = std::fill_n(p, std::max(-whole, 0), '0');
        p = std::copy(digits + std::max(whole, 0), digits + count, p);
    }
    return finish(out, p);
}

} // namespace plain

int shortest_general(char* out, double value) {
    const double magnitude = std::fabs(value);
    if (magnitude >= plain::kSmallest && magnitude < plain::kTooLarge) return plain::text(out, value);
    if (!std::isfinite(value)) return special_text(out, value);
    // The runtime rounds these away from zero.
    if (is_halfway(value))
        value = std::nextafter(value, std::copysign(std::numeric_limits<double>::infinity(), value));
    const std::to_chars_result result =
        std::to_chars(out, out + kRealTextSize - 1, value, std::chars_format::general, kDigits);
    return finish(out, widen_exponent(out, result.ptr));
}

int runtime_general(char* out, double value) {
    char text[kRuntimeTextSize];
    _gcvt(value, kDigits, text);
    // The locale's point, whichever that is by now, stands behind the first digits.
    char* point = text + (*text == '-' ? 1 : 0);
    while (is_digit(*point))
        ++point;
    if (*point != 0 && *point != 'e') *point = '.';
    text[kRealTextSize - 1] = 0;
    return copy_text(out, text);
}

enum RuntimeHabit { kNotAsked, kGeneral, kItsOwn };

// Runtimes differ in the shape of some numbers. Where the present one does what the fast way does, that is
// used.
bool runtime_prints_general() {
    for (const double probe : {3.0, 0.0, -2.5, 1e14, 0.001, 1e-5, 0.00012345}) {
        char ours[kRealTextSize];
        char theirs[kRealTextSize];
        shortest_general(ours, probe);
        runtime_general(theirs, probe);
        if (std::strcmp(ours, theirs) != 0) return false;
    }
    return true;
}

// --- text to reals

bool is_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// The parts of a number's text; digits are those of the mantissa.
struct RealText {
    bool negative = false;
    const char* begin = nullptr; // first digit or point
    const char* mantissa_end = nullptr;
    const char* exponent = nullptr; // its letter, or null
    const char* end = nullptr;
    bool has_digits = false;
};

const char* skip_digits(const char* p) {
    while (is_digit(*p))
        ++p;
    return p;
}

RealText split(const char* p) {
    RealText real;
    while (is_space(*p))
        ++p;
    real.negative = *p == '-';
    if (*p == '-' || *p == '+') ++p;
    real.begin = p;
    p = skip_digits(p);
    std::size_t digits = static_cast<std::size_t>(p - real.begin);
    if (*p == '.') {
        const char* const fraction = ++p;
        p = skip_digits(p);
        digits += static_cast<std::size_t>(p - fraction);
    }
    real.has_digits = digits != 0;
    real.mantissa_end = real.end = p;
    if (*p == 'e' || *p == 'E' || *p == 'd' || *p == 'D') {
        const char* const sign = p + 1;
        const char* const first = *sign == '-' || *sign == '+' ? sign + 1 : sign;
        if (is_digit(*first)) {
            real.exponent = p;
            real.end = skip_digits(first);
        }
    }
    return real;
}

// Whether a number that does not fit is too large, rather than too small.
bool is_huge(const RealText& real) {
    const char* const point = static_cast<const char*>(
        std::memchr(real.begin, '.', static_cast<std::size_t>(real.mantissa_end - real.begin)));
    const char* const whole_end = point != nullptr ? point : real.mantissa_end;
    const char* first = real.begin;
    while (first != real.mantissa_end && (*first == '0' || *first == '.'))
        ++first;
    long long magnitude = first < whole_end ? whole_end - first : whole_end + 1 - first;
    if (real.exponent != nullptr) {
        constexpr long long kBeyondAnyText = 1LL << 40;
        const bool negative = real.exponent[1] == '-';
        long long exponent = 0;
        for (const char* p = real.exponent + 1; p != real.end; ++p)
            if (is_digit(*p) && exponent < kBeyondAnyText) exponent = exponent * 10 + (*p - '0');
        magnitude += negative ? -exponent : exponent;
    }
    return magnitude > 0;
}

double parse(const RealText& real, const char* begin, const char* end) {
    double value = 0;
    if (std::from_chars(begin, end, value).ec == std::errc::result_out_of_range)
        value = is_huge(real) ? std::numeric_limits<double>::infinity() : 0.0;
    return value;
}

// The exponent letter d means the same as e, which is the only one that the parser knows.
double parse_with_d(const RealText& real) {
    Vector<char> text(real.begin, real.end);
    text[static_cast<std::size_t>(real.exponent - real.begin)] = 'e';
    return parse(real, text.data(), text.data() + text.size());
}

} // namespace

int format_int(char* out, int value) noexcept {
    return finish(out, std::to_chars(out, out + kIntegerTextSize - 1, value).ptr);
}

int format_uint(char* out, unsigned value) noexcept {
    return finish(out, std::to_chars(out, out + kIntegerTextSize - 1, value).ptr);
}

int real_to_text14(char* out, double value) noexcept {
    constinit static std::atomic<int> habit{kNotAsked};
    int known = habit.load(std::memory_order_relaxed);
    if (known == kNotAsked) {
        known = runtime_prints_general() ? kGeneral : kItsOwn;
        habit.store(known, std::memory_order_relaxed);
    }
    return known == kGeneral ? shortest_general(out, value) : runtime_general(out, value);
}

int text_to_int(const char* text, const char** end, int base) noexcept {
    char* behind = nullptr;
    const long value = std::strtol(text, &behind, base);
    if (end != nullptr) *end = behind;
    return value;
}

unsigned text_to_uint(const char* text, const char** end, int base) noexcept {
    char* behind = nullptr;
    const unsigned long value = std::strtoul(text, &behind, base);
    if (end != nullptr) *end = behind;
    return value;
}

double text_to_real(const char* text, const char** end) {
    const RealText real = split(text);
    if (end != nullptr) *end = real.has_digits ? real.end : text;
    if (!real.has_digits) return 0;
    const bool has_d = real.exponent != nullptr && (*real.exponent == 'd' || *real.exponent == 'D');
    const double value = has_d ? parse_with_d(real) : parse(real, real.begin, real.end);
    return real.negative ? -value : value;
}

} // namespace qzr
