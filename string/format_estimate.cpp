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

// One conversion of a format.
struct Conversion {
    std::int64_t width = 0;
    std::int64_t precision = -1; // below 0: none given
    bool narrow = true;          // of a text argument
    bool alternate = false;      // "#"

    std::uint64_t width_and_precision() const {
        return static_cast<std::uint64_t>(width) +
               static_cast<std::uint64_t>(std::max<std::int64_t>(precision, 0));
    }
};

template <class Unit>
class Estimate {
public:
    Estimate(const Unit* format, std::va_list arguments) : at_(format), arguments_(arguments) {}

    std::uint64_t run() {
        while (*at_ != 0) {
            if (*at_ != '%' || *++at_ == '%') {
                if (*at_ != 0) ++at_;
                ++total_;
            } else if (!conversion()) {
                break;
            }
        }
        // What is not understood here takes an unknown number of arguments: the rest counts as it stands.
        return total_ + text_length(at_);
    }

private:
    bool conversion() {
        Conversion c;
        c.narrow = sizeof(Unit) == 1;
        flags(c);
        c.width = number();
        if (c.width < 0) c.width = -c.width;
        if (*at_ == '.') {
            ++at_;
            c.precision = number();
        }
        size_prefix(c);
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

    void size_prefix(Conversion& c) {
        for (;; ++at_) {
            if (*at_ == 'h')
                c.narrow = true;
            else if (*at_ == 'l' || *at_ == 'w')
                c.narrow = false;
            else if (*at_ == 'I' && ((at_[1] == '6' && at_[2] == '4') || (at_[1] == '3' && at_[2] == '2')))
                at_ += 2;
            else if (*at_ != 'I' && *at_ != 'L')
                return;
        }
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
            total_ += std::max(kIntegerRoom, c.width_and_precision());
            break;
        case 'e':
        case 'E':
        case 'f':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            skip_argument();
            total_ += std::max(kRealRoom, c.width_and_precision());
            break;
        case 'c':
        case 'C':
            skip_argument();
            total_ += std::max<std::uint64_t>(1, static_cast<std::uint64_t>(c.width));
            break;
        case 's':
            total_ += text_argument(c, c.narrow);
            break;
        case 'S': // the other width than "%s"
            total_ += text_argument(c, sizeof(Unit) != 1);
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

    // Every argument, whatever its type, takes one slot of eight bytes.
    void skip_argument() { static_cast<void>(va_arg(arguments_, std::uint64_t)); }

    std::uint64_t text_argument(const Conversion& c, bool narrow) {
        // A text with a precision needs no terminator.
        const std::size_t most = c.precision >= 0 ? static_cast<std::size_t>(c.precision) : SIZE_MAX;
        const void* const text = va_arg(arguments_, const void*);
        std::uint64_t length = kNullTextRoom;
        if (text != nullptr)
            length = narrow ? text_length(static_cast<const char*>(text), most)
                            : text_length(static_cast<const wchar_t*>(text), most);
        length = std::max<std::uint64_t>(length, 1);
        if (c.precision >= 0) length = std::min<std::uint64_t>(length, most);
        return std::max(length, static_cast<std::uint64_t>(c.width));
    }

    const Unit* at_;
    std::va_list arguments_;
    std::uint64_t total_ = 0;
};

} // namespace

std::uint64_t estimate_format(const char* format, std::va_list arguments) noexcept {
    return Estimate<char>(format, arguments).run();
}

std::uint64_t estimate_format(const wchar_t* format, std::va_list arguments) noexcept {
    return Estimate<wchar_t>(format, arguments).run();
}

} // namespace qzr
