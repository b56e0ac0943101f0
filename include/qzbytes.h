/// @file
/// Streams as bytes of the C++ standard library, and bytes as streams. Header-only.
#pragma once

#include "qzparam.h"
#include "qzref.h"
#include "qzstream.h"

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

namespace qz {

/// What streams and files have in common.
namespace detail {

/// Reads to the end, or until the piece, called with each part, answers false. @return the bytes read
template <class Source, class Piece>
unsigned long long read_while(Source& source, Piece piece) {
    std::string buffer(64 * 1024, '\0');
    unsigned long long total = 0;
    while (const unsigned got = source.Read(buffer.data(), static_cast<unsigned>(buffer.size()))) {
        total += got;
        if (!piece(std::string_view(buffer.data(), got))) break;
    }
    return total;
}

template <class Source, class Piece>
unsigned long long read_all(Source& source, Piece piece) {
    return read_while(source, [&piece](std::string_view bytes) {
        piece(bytes);
        return true;
    });
}

template <class Target>
void write_all(Target& target, std::string_view bytes) {
    constexpr std::size_t kMost = 1 << 30;
    while (!bytes.empty()) {
        const std::string_view piece = bytes.substr(0, kMost);
        target.Write(piece.data(), static_cast<unsigned>(piece.size()));
        bytes.remove_prefix(piece.size());
    }
}

} // namespace detail

/// @return a new, empty stream in memory. Throws CXMemException.
inline CQZRef<IXStream> new_stream() {
    auto stream = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
    if (!stream) throw CXMemException();
    return stream;
}

/// @return a stream in memory over a copy of the bytes, at its start. Throws CXMemException, also for bytes
///         of 2 GiB and more, which such a stream does not read.
inline CQZRef<IXStream> stream_of(std::string_view bytes) {
    if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) throw CXMemException();
    auto stream = new_stream();
    if (bytes.empty()) return stream;
    CQZRef<IMemBlock>::Require(stream.Get())->SetData(bytes.data(), static_cast<unsigned>(bytes.size()));
    return stream;
}

/// Hands the rest of a stream out in pieces of 64 KiB at most. A stream that stays where it is while it is
/// read has no end; of one, such as new_EmptyStream makes, it hands out what a single Read brings.
/// @param piece called with a std::string_view, which is good until it returns; it leaves the position alone
/// @return the bytes read. Throws what the stream and piece throw.
template <class Piece>
unsigned long long read_pieces(IXStream& stream, Piece piece) {
    unsigned position = stream.GetPosition();
    return detail::read_while(stream, [&](std::string_view bytes) {
        piece(bytes);
        const unsigned before = position;
        position = stream.GetPosition();
        return position != before;
    });
}

/// @return a copy of the rest of a stream, as read_pieces hands it out. Throws what the stream throws.
inline std::string read_rest(IXStream& stream) {
    std::string bytes;
    read_pieces(stream, [&bytes](std::string_view piece) { bytes += piece; });
    return bytes;
}

/// Writes all the bytes at the stream's position. Throws what the stream throws.
inline void write(IXStream& stream, std::string_view bytes) { detail::write_all(stream, bytes); }

/// @return all the bytes of a stream in memory, wherever its position is. Throws CXIFaceException for other
///         streams.
inline std::string bytes_of(IXStream& stream) {
    const auto block = CQZRef<IMemBlock>::Require(&stream);
    if (block->GetSize() == 0) return {};
    return std::string(static_cast<const char*>(block->GetData()), block->GetSize());
}

/// @return a tree in its binary form. Throws CXException QZERR_OTHER when it cannot be written.
inline std::string bytes_of(IParam& tree) {
    const auto stream = new_stream();
    if (SaveParamToXStream(stream.Get(), &tree) == 0) throw CXException(QZERR_OTHER);
    return bytes_of(*stream);
}

/// Empties a tree and reads a binary form into it. There is nothing in that form to know it by: of a tree
/// that ends early it keeps what was there, and of most other bytes what they would mean, and both are a
/// success.
/// @return false when a value has an unknown type code, or is an object that fails so; the tree is empty then
inline bool read_bytes(IParam& tree, std::string_view bytes) {
    return LoadParamFromXStream(stream_of(bytes).Get(), &tree) != 0;
}

} // namespace qz
