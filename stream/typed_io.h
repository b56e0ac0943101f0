// Typed values, texts and lines over Read and Write: the one layer below all streams and files. The functions
// take anything with
//
//     unsigned Read(void* buffer, unsigned count);        // bytes read, 0 at the end
//     void or int Write(const void* buffer, unsigned count);
//
// Given a final class they call its Read and Write directly, and the compiler folds the transfer into them;
// given an interface they call through it. Values are stored as they lie in memory, little-endian.
//
// Streams and files differ in what a read at the end means and in their line rule: read_value reports and
// throws nothing, and what a class makes of that stands in its adapter.
#pragma once

#include "qzexception.h"
#include "string/scan.h"
#include "variant/text.h"

#include <cstdint>
#include <cstring>
#include <limits>

namespace qzr {

// Reads one value; bytes that are missing are zero. @return the bytes read
template <class T, class Io>
unsigned read_value(Io& io, T& value) {
    value = T();
    return io.Read(&value, sizeof value);
}

template <class T, class Io>
void write_value(Io& io, T value) {
    io.Write(&value, sizeof value);
}

// A transfer's size as the 32 bits that it is counted in. Nothing larger can be stored.
inline unsigned transfer_size(std::uint64_t bytes) {
    if (bytes > std::numeric_limits<unsigned>::max()) throw CXMemException();
    return static_cast<unsigned>(bytes);
}

inline std::uint64_t bytes_with_terminator(const char* text) { return std::uint64_t{text_length(text)} + 1; }
inline std::uint64_t bytes_with_terminator(const wchar_t* text) {
    return (std::uint64_t{text_length(text)} + 1) * sizeof(wchar_t);
}

// The text and its terminator in one transfer; null is the empty text.
template <class Char, class Io>
void write_text(Io& io, const Char* text) {
    const Char* const source = or_empty(text);
    io.Write(source, transfer_size(bytes_with_terminator(source)));
}

// The rule of streams: a read that brings nothing is the end of the data, one that brings a part is not.
template <class T, class Io>
T read_or_eof(Io& io) {
    T value;
    if (read_value(io, value) == 0) throw CXEofException();
    return value;
}

template <class Char>
constexpr bool ends_stream_line(Char c) {
    return c == Char(10) || c == Char(0);
}

// The line rule of streams. Reads on behind the `have` characters that are in the buffer already, none of
// which ends a line.
//
// The terminator goes into the place after the stop character. When max characters came without a stop it
// goes one further: buffer[max] stays as it was and buffer[max + 1] becomes 0. Callers provide max + 2 places
// and count on both.
template <class Char, class Io>
int read_stream_line(Io& io, Char* buffer, int max, std::int64_t have = 0) {
    std::int64_t i = have;
    while (i < max) {
        buffer[i] = read_or_eof<Char>(io);
        if (ends_stream_line(buffer[i])) break;
        ++i;
    }
    buffer[i + 1] = 0;
    return static_cast<int>(i + 1);
}

} // namespace qzr
