#include "stream/variant_codec.h"

namespace qzr {

namespace {

// A well-formed text fills its room but for the unit that the reader adds.
template <class Char>
void trim(Char*& text, std::size_t room) {
    const std::size_t units = text_length(text) + 1;
    if (units + 1 >= room) return;
    try {
        Char* exact = duplicate_text(text);
        mem_free(text);
        text = exact;
    } catch (const CXMemException&) {
        // The larger block serves as well.
    }
}

} // namespace

void trim_text(char*& text, std::size_t room) { trim(text, room); }
void trim_text(wchar_t*& text, std::size_t room) { trim(text, room); }

void write_zeroes(IXStream& stream, unsigned count) {
    static constexpr unsigned char kZeroes[4096] = {};
    while (count != 0) {
        const unsigned piece = std::min<unsigned>(count, sizeof kZeroes);
        stream.Write(kZeroes, piece);
        count -= piece;
    }
}

} // namespace qzr
