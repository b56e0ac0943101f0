#include "param/text/value_text_fields.h"

#include "string/multibyte.h"
#include "string/number_text.h"

#include <cstring>

namespace qzr {

namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// Most numbers are a few decimal digits, perhaps behind a minus. Answers their end, or null for anything
// else, which is left to the runtime's rules.
const char* plain_decimal(const char* at, int& number) {
    constexpr int kMostDigits = 9; // any such number fits
    const bool negative = *at == '-';
    const char* const digits = negative ? at + 1 : at;
    const char* p = digits;
    int sum = 0;
    for (; is_digit(*p) && p - digits < kMostDigits; ++p)
        sum = sum * 10 + (*p - '0');
    if (p == digits || is_digit(*p)) return nullptr;
    number = negative ? -sum : sum;
    return p;
}

} // namespace

int FieldReader::base() const {
    const char* p = at_;
    while (p != end_ && *p != 'x' && *p != 'X')
        ++p;
    if (p == end_) return 10;
    // The byte may be the second one of a character.
    return mb_find(at_, end_, 'x') != nullptr || mb_find(at_, end_, 'X') != nullptr ? 16 : 10;
}

bool FieldReader::next(int& number) {
    const int radix = base();
    if (radix == 10) {
        if (const char* const end = plain_decimal(at_, number)) {
            at_ = end;
            return true;
        }
    }
    const char* const start = at_;
    number = text_to_int(start, &at_, radix);
    return at_ != start;
}

bool FieldReader::next(unsigned& number) {
    const int radix = base();
    if (radix == 10) {
        int plain = 0;
        if (const char* const end = plain_decimal(at_, plain)) {
            number = static_cast<unsigned>(plain); // a minus wraps around
            at_ = end;
            return true;
        }
    }
    const char* const start = at_;
    number = text_to_uint(start, &at_, radix);
    return at_ != start;
}

bool FieldReader::next(long& number) {
    int same = 0;
    const bool found = next(same);
    number = same;
    return found;
}

bool FieldReader::next(unsigned long& number) {
    unsigned same = 0;
    const bool found = next(same);
    number = same;
    return found;
}

bool FieldReader::next(double& number) {
    const char* const start = at_;
    number = text_to_real(start, &at_);
    return at_ != start;
}

bool FieldReader::skip_comma() {
    const char* const comma = std::strchr(at_, ',');
    if (comma == nullptr) return false;
    at_ = comma + 1;
    return true;
}

void append_number(TextBuffer& out, int number) {
    out.added(static_cast<std::size_t>(format_int(out.room(kIntegerTextSize), number)));
}

void append_number(TextBuffer& out, unsigned number) {
    out.added(static_cast<std::size_t>(format_uint(out.room(kIntegerTextSize), number)));
}

void append_number(TextBuffer& out, long number) { append_number(out, static_cast<int>(number)); }
void append_number(TextBuffer& out, unsigned long number) {
    append_number(out, static_cast<unsigned>(number));
}

void append_number(TextBuffer& out, double number) {
    out.added(static_cast<std::size_t>(real_to_text14(out.room(kRealTextSize), number)));
}

} // namespace qzr
