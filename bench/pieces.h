// Pieces of bytes that bear their numbers, to be written and read in sequence.
#pragma once

#include <array>
#include <cstring>

namespace bench {

template <unsigned Size>
std::array<char, Size> numbered(unsigned number) {
    std::array<char, Size> bytes;
    bytes.fill('x');
    std::memcpy(bytes.data(), &number, sizeof number);
    return bytes;
}

inline unsigned number_of(const void* bytes) {
    unsigned number = 0;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

constexpr unsigned kPiece = 4096;

template <class Write>
void write_pieces(unsigned count, const Write& write) {
    auto piece = numbered<kPiece>(0);
    for (unsigned i = 0; i < count; ++i) {
        std::memcpy(piece.data(), &i, sizeof i);
        write(piece.data(), kPiece);
    }
}

/// Reads until nothing comes. @return the sum of all numbers
template <class Read>
unsigned long long read_pieces(const Read& read) {
    std::array<char, kPiece> piece;
    unsigned long long sum = 0;
    while (read(piece.data(), kPiece) != 0)
        sum += number_of(piece.data());
    return sum;
}

/// Of the numbers of so many pieces.
constexpr unsigned long long sum_below(unsigned long long count) { return count * (count - 1) / 2; }

} // namespace bench
