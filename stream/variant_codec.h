// The stored form of variants: a 16-bit type code, then a value whose shape the table of the variant types
// tells. docs/variant-encoding.md has it byte by byte.
//
// Stream is a final class derived from StreamSlots, whose Read and Write are then called directly.
#pragma once

#include "core/allocator.h"
#include "qzobject.h"
#include "qzref.h"
#include "qzstream.h"
#include "stream/typed_io.h"
#include "variant/type_table.h"

#include <algorithm>

namespace qzr {

// The count that stands before a wide text, and with it the number of its bytes that are stored.
enum class WideTextCount {
    kWhole,     // the text and its terminator: 2 * (length + 1)
    kFirstHalf, // length + 1, which is the first half of those bytes: such a text does not read back whole
};

// Counts up to this are allocated as they are; larger ones are first compared with what the stream holds.
constexpr unsigned kTrustedCount = 4096;

// A blob keeps the size it claims, with zeroes where the stream ends early, unless it claims this much more
// than is there.
constexpr std::uint64_t kBlobSlack = 64u << 20;

// A stream that wraps another and tells somebody of each call is measured on the one within.
template <class Stream>
unsigned bytes_left(Stream& stream) {
    auto& measured = stream.measured();
    const unsigned size = measured.GetSize();
    const unsigned position = measured.GetPosition();
    return position < size ? size - position : 0;
}

// Keeps a text whose count was larger than itself in a block of its own size. Never fails.
void trim_text(char*& text, std::size_t room);
void trim_text(wchar_t*& text, std::size_t room);

// Writes zeroes for the bytes that a blob of a null pointer stands for.
void write_zeroes(IXStream& stream, unsigned count);

// Reads a counted text into a block that the variant owns from the start, so that nothing leaks if the
// transfer throws. The block ends with a zero of its own: a stored text need not have one.
template <class Char, class Stream>
bool read_text(Stream& stream, Char*& text) {
    unsigned count;
    read_value(stream, count); // nothing left reads as 0
    if (count > kTrustedCount) count = std::min(count, bytes_left(stream));
    const std::size_t room = (std::size_t{count} + sizeof(Char) - 1) / sizeof(Char) + 1;
    text = static_cast<Char*>(mem_alloc(room * sizeof(Char)));
    const bool any = stream.Read(text, count) != 0;
    trim_text(text, room);
    return any;
}

template <class Stream>
bool read_blob(Stream& stream, tagQZBLOB& blob) {
    const unsigned count = read_or_eof<unsigned>(stream);
    if (count > kTrustedCount && count > bytes_left(stream) + kBlobSlack) throw CXMemException();
    char no_bytes;
    if (count == 0) return stream.Read(&no_bytes, 0) != 0; // a transfer like any other to who counts them
    blob.pBlobData = mem_alloc(count);
    blob.cbSize = count;
    return stream.Read(blob.pBlobData, count) != 0;
}

// Reads one variant. @return 1 when the last transfer of its value brought anything, else 0. A failure leaves
// v a record that clears: empty, or with as much of the value as was read.
template <class Stream>
int read_variant(Stream& stream, tagQZVARIANT& v) {
    QZVariantClear(&v);
    unsigned short vt;
    read_value(stream, vt);
    const VariantType* type = variant_type(vt);
    if (type == nullptr) throw CXFileException(QZERR_FORMAT, QZOP_READ, stream.GetName());
    v.vt = vt;
    switch (type->ownership) {
    case Ownership::kText:
        return read_text(stream, v.pszVal) ? 1 : 0;
    case Ownership::kWideText:
        return read_text(stream, v.pwszVal) ? 1 : 0;
    case Ownership::kBytes:
        return read_blob(stream, v.blobVal) ? 1 : 0;
    case Ownership::kReference:
        return ReadObjectFromXStream(&stream, &v.pUnkVal);
    case Ownership::kNone:
        break;
    }
    return stream.Read(payload(v), type->stream_size) != 0 ? 1 : 0;
}

template <class Stream>
void write_counted(Stream& stream, const void* bytes, std::uint64_t count) {
    const unsigned size = transfer_size(count);
    write_value(stream, size);
    stream.Write(bytes, size);
}

inline std::uint64_t wide_text_bytes(const wchar_t* text, WideTextCount rule) {
    const std::uint64_t whole = bytes_with_terminator(text);
    return rule == WideTextCount::kWhole ? whole : whole / 2;
}

template <class Stream>
void write_blob(Stream& stream, const tagQZBLOB& blob) {
    write_value(stream, blob.cbSize);
    if (blob.pBlobData == nullptr) {
        write_zeroes(stream, blob.cbSize);
    } else if (blob.cbSize != 0) {
        stream.Write(blob.pBlobData, blob.cbSize);
    }
}

// Writes one variant; of an invalid type code the code alone. @return 1
template <class Stream>
int write_variant(Stream& stream, const tagQZVARIANT& v, WideTextCount rule) {
    write_value(stream, v.vt);
    const VariantType* type = variant_type(v.vt);
    if (type == nullptr) return 1;
    switch (type->ownership) {
    case Ownership::kText: {
        const char* text = or_empty(v.pszVal);
        write_counted(stream, text, bytes_with_terminator(text));
        break;
    }
    case Ownership::kWideText: {
        const wchar_t* text = or_empty(v.pwszVal);
        write_counted(stream, text, wide_text_bytes(text, rule));
        break;
    }
    case Ownership::kBytes:
        write_blob(stream, v.blobVal);
        break;
    case Ownership::kReference:
        return WriteObjectToXStream(&stream, CQZRef<IPersistXStream>::Query(v.pUnkVal).Get());
    case Ownership::kNone:
        stream.Write(payload(v), type->stream_size);
        break;
    }
    return 1;
}

} // namespace qzr
