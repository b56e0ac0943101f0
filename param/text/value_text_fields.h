// The numbers within a value's text: one, or several separated by commas.
#pragma once

#include "param/text/text_buffer.h"

#include <string_view>

namespace qzr {

// Hands out the numbers of a text from left to right. The text is followed by a zero. Every step tells
// whether it succeeded; after a failure nothing more is to be asked for.
//
// An integer is hexadecimal when an "x" stands anywhere from it to the end of the whole value, even in a
// later field or in what follows the number. Stored settings rely on it: "10,0x20" is 16 and 32.
class FieldReader {
public:
    explicit FieldReader(std::string_view text) : at_(text.data()), end_(text.data() + text.size()) {}

    bool next(int& number);
    bool next(long& number);
    bool next(unsigned& number);
    bool next(unsigned long& number);
    bool next(double& number);

    // Moves behind the next comma, over whatever stands before it. False when there is none.
    bool skip_comma();

    // Reads fields with a comma between each two of them.
    template <class First, class... Others>
    bool list(First& first, Others&... others) {
        if (!next(first)) return false;
        if constexpr (sizeof...(others) == 0) {
            return true;
        } else {
            return skip_comma() && list(others...);
        }
    }

private:
    int base() const;

    const char* at_;
    const char* end_;
};

void append_number(TextBuffer& out, int number);
void append_number(TextBuffer& out, long number);
void append_number(TextBuffer& out, unsigned number);
void append_number(TextBuffer& out, unsigned long number);
void append_number(TextBuffer& out, double number); // 14 significant digits

template <class Number>
void append_next(TextBuffer& out, Number number) {
    out.append(',');
    append_number(out, number);
}

template <class First, class... Others>
void append_list(TextBuffer& out, First first, Others... others) {
    append_number(out, first);
    (append_next(out, others), ...);
}

} // namespace qzr
