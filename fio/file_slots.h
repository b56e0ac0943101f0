// What all files have in common: seeking, typed values, lines.
#pragma once

#include "qzfile.h"
#include "stream/line_run.h"
#include "stream/typed_io.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace qzr {

// A value that the end cuts short is a failure here, unlike in streams.
template <class T, class Io>
T read_or_throw(Io& io) {
    T value;
    if (read_value(io, value) != sizeof value) throw CXFileException(QZERR_EOF, QZOP_READ, io.GetName());
    return value;
}

// The line rule of files: a line feed ends the line, is stored and not counted; a zero is a character like
// any other. Reads on behind the n characters that are in the buffer already.
//
// The terminator goes into the place behind the last one looked at, or into that place itself when max leaves
// no room. At the end of the file the place that nothing was read into stays as it was, before the
// terminator. Callers provide max + 2 places, count on the result and cut there.
template <class Char, class Io>
int read_file_line(Io& io, Char* buffer, int max, int n) {
    for (; n < max; ++n) {
        Char c = 0; // half a character at the end is filled with zeroes
        if (io.Read(&c, sizeof c) == 0) break;
        buffer[n] = c;
        if (c == Char(10)) break;
    }
    const bool room_behind = n < std::int64_t{max} - 1;
    buffer[room_behind ? n + 1 : n] = 0;
    return n;
}

// Where a seek leads. Offsets and results count as signed numbers, so what would lie at 2 GiB or further on
// is 0. Throws QZERR_SEEK for a bad origin.
inline unsigned seek_target(unsigned offset, unsigned origin, unsigned position, unsigned size,
                            QZFileOperation operation, const wchar_t* name) {
    if (origin > 2) throw CXFileException(QZERR_SEEK, operation, name);
    const unsigned base = origin == 0 ? 0 : origin == 1 ? position : size;
    const unsigned target = base + offset;
    return static_cast<int>(target) < 0 ? 0 : target;
}

// Self derives from FileSlots<Self, IXFile or IXOutFile> and adds Read, Write, Seek, Flush, GetName, and
//
//     std::span<const unsigned char> ahead(std::uint64_t wanted); // bytes at the position that lie in
//     memory,
//                                                                 // `wanted` at most; none is always right
//     void skip(std::size_t count);                               // moves on by as many
//
// Make Self or these operations final: they are then reached without a virtual call.
template <class Self, class Base>
class FileSlots : public CQZUnknownImpl<Base> {
public:
    unsigned GetPosition() override { return self().Seek(0, 1); }

    // Goes to the end and back; from a position at 2 GiB or further on that leads to the start.
    unsigned GetSize() override {
        const unsigned position = self().GetPosition();
        const unsigned size = self().Seek(0, 2);
        self().Seek(position, 0);
        return size;
    }

    unsigned char ReadByte() override { return read_or_throw<unsigned char>(self()); }
    unsigned short ReadWord() override { return read_or_throw<unsigned short>(self()); }
    unsigned ReadDWord() override { return read_or_throw<unsigned>(self()); }
    double ReadDouble() override { return read_or_throw<double>(self()); }

    void WriteByte(unsigned char value) override { write_value(self(), value); }
    void WriteWord(unsigned short value) override { write_value(self(), value); }
    void WriteDWord(unsigned value) override { write_value(self(), value); }
    void WriteDouble(double value) override { write_value(self(), value); }
    void WriteStringW(const wchar_t* text) override { write_text(self(), text); }
    void WriteString(const char* text) override { write_text(self(), text); }

    int ReadLineW(wchar_t* buffer, int max) override { return read_line(buffer, max); }
    int ReadLine(char* buffer, int max) override { return read_line(buffer, max); }

private:
    Self& self() { return static_cast<Self&>(*this); }

    // What lies in memory is taken in one go.
    template <class Char>
    int read_line(Char* buffer, int max) {
        std::size_t run = 0;
        if (max > 0) {
            const auto bytes = self().ahead(static_cast<std::uint64_t>(max) * sizeof(Char));
            run = line_run<Char, Char(10)>(bytes.data(), bytes.size() / sizeof(Char));
            if (run != 0) std::memcpy(buffer, bytes.data(), run * sizeof(Char));
            self().skip(run * sizeof(Char));
        }
        return read_file_line(self(), buffer, max, static_cast<int>(run));
    }
};

} // namespace qzr
