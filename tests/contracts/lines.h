// Lines of streams and files in tables: in a row "$" is a line feed, "0" a zero, and in what was read "." a
// place that was left alone.
#pragma once

#include "qzexception.h"

#include <string>

namespace lines {

struct Row {
    const char* input;
    unsigned start;
    int max;
    const char* expected; // "result: buffer @position"
};

inline std::string bytes_of(const char* input, std::size_t width) {
    std::string bytes;
    for (const char* p = input; *p != 0; ++p) {
        bytes += *p == '$' ? '\n' : *p == '0' ? '\0' : *p;
        bytes.append(width - 1, '\0');
    }
    return bytes;
}

template <class Char>
constexpr Char kUntouched = static_cast<Char>(sizeof(Char) == 1 ? 0xEE : 0xEEEE);

// Reads into a buffer that nobody has touched. @return what a row expects, "end: " when there is no line
template <class Char, class Source>
std::string read(Source& source, int max, int (Source::*read_line)(Char*, int)) {
    std::basic_string<Char> buffer(12, kUntouched<Char>);
    std::string told;
    try {
        told = std::to_string((source.*read_line)(buffer.data(), max)) + ": ";
    } catch (const CXEofException&) {
        told = "end: ";
    }
    for (const Char c : buffer)
        told += c == kUntouched<Char> ? '.' : c == 0 ? '0' : c == 10 ? '$' : static_cast<char>(c);
    return told + " @" + std::to_string(source.GetPosition() / sizeof(Char));
}

} // namespace lines
