#include "string/format_estimate.h"

#include "string/scan.h"

#include <algorithm>
#include <cstddef>

namespace qzr {
namespace {

constexpr std::uint64_t kRealRoom = 128;
constexpr std::uint64_t kIntegerRoom = 32;
constexpr std::uint64_t kNullTextRoom = 6; // "(null)"
constexpr std::int64_t kDigitsEnd = std::int64_t{1} << 31;

// Up to these precisions the room above holds whatever is printed: a sign, "0x", the digits; a sign, up to
// sixteen digits of a real below 1e15 or an exponent, the decimals.
constexpr std::int64_t kIntegerPrecision = 28;
constexpr std::int64_t kRealPrecision = 100;
constexpr double kLongReal = 1e15;

// What a size prefix says of a text or character argument.
enum class Width { kOwn, kNarrow, kWide, kDisputed };

// One conversion of a format.
struct Conversion {
    std::int64_t width = 0;
    std::int64_t precision = -1; // below 0: none given
    Width prefix = Width::kOwn;
    bool alternate = false; // "#"

    std::uint64_t width_and_precision() const {
        return static_cast<std::uint64_t>(width) +
               static_cast<std::uint64_t>(std::max<std::int64_t>(precision, 0));
    }
};

template <class Unit>
class Estimate {
public:
    Estimate(const Unit* format, std::va_list arguments) : at_(format), arguments_(arguments) {}

    FormatEstimate run() {
        while (*at_ != 0) {
            if (*at_ != '%' || *++at_ == '%') {
                if (*at_ != 0) ++at_;
                ++total_;
            } else if (!conversion()) {
                break;
            }
        }
        // What is not understood here takes an unknown number of arguments: the rest counts as it stands.
        if (*at_ != 0) certain_ = false;
        return {total_ + text_length(at_), certain_};
    }

private:
    bool conversion() {
        Conversion c;
        flags(c);
        c.width = number();
        if (c.width < 0) c.width = -c.width;
        if (*at_ == '.') {
            ++at_;
            c.precision = number();
        }
        if (!size_prefix(c)) return false;
        if (c.alternate) total_ += 2;
        return count(c);
    }

    void flags(Conversion& c) {
        for (;; ++at_) {
            if (*at_ == '#')
                c.alternate = true;
            else if (*at_ != '-' && *at_ != '+' && *at_ != ' ' && *at_ != '0')
                return;
        }
    }

    std::int64_t number() {
        if (*at_ == '*') {
            ++at_;
            return va_arg(arguments_, int);
        }
        std::int64_t value = 0;
        for (; *at_ >= '0' && *at_ <= '9'; ++at_)
            value = std::min(value * 10 + (*at_ - '0'), kDigitsEnd);
        return value;
    }

    // @return false for an "I" that the runtime does not take for a prefix
    bool size_prefix(Conversion& c) {
        for (;;) {
            if (*at_ == 'h') {
                add_prefix(c, Width::kNarrow);
            } else if (*at_ == 'l' && at_[1] == 'l') { // of a 64-bit integer
                at_ += 2;
            } else if (*at_ == 'l' || *at_ == 'w') {
                add_prefix(c, Width::kWide);
            } else if (*at_ == 'I') {
                const bool sized = (at_[1] == '6' && at_[2] == '4') || (at_[1] == '3' && at_[2] == '2');
                if (!sized && !is_integer(at_[1])) return false;
                at_ += sized ? 3 : 1;
            } else if (*at_ == 'L') {
                ++at_;
            } else {
                return true;
            }
        }
    }

    // Runtimes differ in what several prefixes mean.
    void add_prefix(Conversion& c, Width width) {
        c.prefix = c.prefix == Width::kOwn ? width : Width::kDisputed;
        ++at_;
    }

    static bool is_integer(Unit c) {
        return c == 'd' || c == 'i' || c == 'o' || c == 'u' || c == 'x' || c == 'X';
    }

    bool count(const Conversion& c) {
        switch (*at_) {
        case 'd':
        case 'i':
        case 'o':
        case 'p':
        case 'u':
        case 'x':
        case 'X':
            skip_argument();
            add(std::max(kIntegerRoom, c.width_and_precision()), c.precision <= kIntegerPrecision);
            break;
        case 'e':
        case 'E':
        case 'f':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            real_argument(c);
            break;
        case 'c':
        case 'C':
            skip_argument();
            add(std::max<std::uint64_t>(1, static_cast<std::uint64_t>(c.width)),
                reads(c, *at_ == 'C') == Width::kNarrow || sizeof(Unit) != 1);
            break;
        case 's':
        case 'S':
            text_argument(c, reads(c, *at_ == 'S'));
            break;
        case 'n':
            skip_argument();
            break;
        default:
            return false;
        }
        ++at_;
        return true;
    }

    void add(std::uint64_t units, bool certain) {
        total_ += units;
        if (!certain) certain_ = false;
    }

    // Every argument, whatever its type, takes one slot of eight bytes.
    void skip_argument() { static_cast<void>(va_arg(arguments_, std::uint64_t)); }

    void real_argument(const Conversion& c) {
        const double value = va_arg(arguments_, double);
        const bool is_short = *at_ != 'f' || (value > -kLongReal && value < kLongReal);
        add(std::max(kRealRoom, c.width_and_precision()), is_short && c.precision <= kRealPrecision);
    }

    // The width of a text or character: "%S" and "%C" name the one that the format has not.
    static Width reads(const Conversion& c, bool other) {
        if (c.prefix != Width::kOwn) return c.prefix;
        return (sizeof(Unit) == 1) != other ? Width::kNarrow : Width::kWide;
    }

    // A text with a precision needs no terminator.
    static std::uint64_t length_of(const void* text, std::size_t most, Width width) {
        if (text == nullptr) return kNullTextRoom;
        if (width == Width::kDisputed) return 0;
        return width == Width::kNarrow ? text_length(static_cast<const char*>(text), most)
                                       : text_length(static_cast<const wchar_t*>(text), most);
    }

    // A wide text may take several bytes a unit, a narrow one never more units than bytes.
    void text_argument(const Conversion& c, Width width) {
        const std::size_t most = c.precision >= 0 ? static_cast<std::size_t>(c.precision) : SIZE_MAX;
        const void* const text = va_arg(arguments_, const void*);
        std::uint64_t length = std::max<std::uint64_t>(length_of(text, most, width), 1);
        if (c.precision >= 0) length = std::min<std::uint64_t>(length, most);
        add(std::max(length, static_cast<std::uint64_t>(c.width)),
            text != nullptr && (width == Width::kNarrow || (width == Width::kWide && sizeof(Unit) != 1)));
    }

    const Unit* at_;
    std::va_list arguments_;
    std::uint64_t total_ = 0;
    bool certain_ = true;
};

} // namespace

FormatEstimate estimate_format(const char* format, std::va_list arguments) noexcept {
    return Estimate<char>(format, arguments).run();
}

FormatEstimate estimate_format(const wchar_t* format, std::va_list arguments) noexcept {
    return Estimate<wchar_t>(format, arguments).run();
}

} // namespace qzr
