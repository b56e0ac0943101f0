#include "variant/number_print.h"

#include "string/format.h"
#include "variant/decimal_point.h"

#include <bit>
#include <cstdint>

namespace qzr {

namespace {

std::size_t print_by_runtime(char* out, double value) {
    return static_cast<std::size_t>(print_text(out, kNumberRoom, "%lg", value));
}
std::size_t print_by_runtime(wchar_t* out, double value) {
    return static_cast<std::size_t>(print_text(out, kNumberRoom, L"%lg", value));
}

// Writes exactly count digits. @return the place behind them
template <class Char>
Char* write_digits(Char* out, unsigned value, unsigned count) {
    for (unsigned i = count; i-- > 0; value /= 10)
        out[i] = static_cast<Char>('0' + value % 10);
    return out + count;
}

unsigned digits_of(unsigned value) {
    unsigned count = 1;
    for (; value >= 10; value /= 10)
        ++count;
    return count;
}

template <class Char>
Char* write_unsigned(Char* out, unsigned value) {
    return write_digits(out, value, digits_of(value));
}

// A real of plain size as rounded / 10^places.
struct Rounded {
    unsigned value;
    unsigned places;
};

__extension__ typedef unsigned __int128 Wide;

constexpr unsigned kPowersOfTen[] = {1,      10,      100,      1000,      10000,
                                     100000, 1000000, 10000000, 100000000, 1000000000};

// Decimals that six significant digits leave to a value of at least 0.0001.
unsigned places_of(double magnitude) {
    constexpr double kSteps[] = {1e5, 1e4, 1e3, 1e2, 1e1, 1e0, 1e-1, 1e-2, 1e-3};
    unsigned places = 0;
    while (places < 9 && magnitude < kSteps[places])
        ++places;
    return places;
}

// Rounds 0.0001 <= magnitude <= 999999 to six digits with whole numbers: magnitude = mantissa / 2^shift, so
// mantissa * 10^places / 2^shift is the result and what is below the point tells the direction.
// @return false near the middle, where runtimes differ in how they round
bool round_to_six_digits(double magnitude, Rounded& out) {
    const auto bits = std::bit_cast<std::uint64_t>(magnitude);
    const std::uint64_t mantissa = (bits & 0xFFFFFFFFFFFFFull) | 0x10000000000000ull;
    const unsigned shift = 1075 - static_cast<unsigned>(bits >> 52); // 33 to 66
    out.places = places_of(magnitude);
    const Wide product = static_cast<Wide>(mantissa) * kPowersOfTen[out.places];
    const Wide half = static_cast<Wide>(1) << (shift - 1);
    const Wide rest = product & (half * 2 - 1);
    const Wide distance = rest > half ? rest - half : half - rest;
    if (distance < half >> 20) return false;
    out.value = static_cast<unsigned>(product >> shift) + (rest > half ? 1 : 0);
    return true;
}

template <class Char>
Char* write_decimal(Char* out, Rounded number) {
    while (number.places > 0 && number.value % 10 == 0) {
        number.value /= 10;
        --number.places;
    }
    const unsigned unit = kPowersOfTen[number.places];
    out = write_unsigned(out, number.value / unit);
    if (number.places == 0) return out;
    *out++ = '.';
    return write_digits(out, number.value % unit, number.places);
}

template <class Char>
std::size_t terminate(Char* begin, Char* end) {
    *end = 0;
    return static_cast<std::size_t>(end - begin);
}

template <class Char>
std::size_t print_signed_number(Char* out, int value) {
    Char* p = out;
    if (value < 0) *p++ = '-';
    const unsigned magnitude = value < 0 ? 0u - static_cast<unsigned>(value) : static_cast<unsigned>(value);
    return terminate(out, write_unsigned(p, magnitude));
}

template <class Char>
std::size_t print_real_number(Char* out, double value) {
    const double magnitude = value < 0 ? -value : value;
    Rounded number;
    const bool plain = magnitude >= 0.0001 && magnitude <= 999999 && decimal_point_is_dot() &&
                       round_to_six_digits(magnitude, number);
    if (!plain) return print_by_runtime(out, value);
    Char* p = out;
    if (value < 0) *p++ = '-';
    return terminate(out, write_decimal(p, number));
}

} // namespace

std::size_t print_int(char* out, int value) { return print_signed_number(out, value); }
std::size_t print_int(wchar_t* out, int value) { return print_signed_number(out, value); }
std::size_t print_unsigned(char* out, unsigned value) { return terminate(out, write_unsigned(out, value)); }
std::size_t print_unsigned(wchar_t* out, unsigned value) {
    return terminate(out, write_unsigned(out, value));
}
std::size_t print_real(char* out, double value) { return print_real_number(out, value); }
std::size_t print_real(wchar_t* out, double value) { return print_real_number(out, value); }

} // namespace qzr
