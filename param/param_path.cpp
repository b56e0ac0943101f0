#include "param/param_path.h"

#include "core/name_hash.h"
#include "core/name_hash_block.h"
#include "string/multibyte.h"

#include <bit>

namespace qzr {

namespace {

bool is_plain(char c) { return c > '\0' && c != '\\'; } // negative from 0x80 on

// The same sixteen at once, as bits of those that are not.
unsigned special_bytes(__m128i block) {
    const __m128i ends =
        _mm_or_si128(_mm_cmpeq_epi8(block, _mm_setzero_si128()), _mm_cmpeq_epi8(block, _mm_set1_epi8('\\')));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(ends, block)));
}

__m128i folded(__m128i block) {
    const __m128i capital = _mm_and_si128(_mm_cmpgt_epi8(block, _mm_set1_epi8('A' - 1)),
                                          _mm_cmplt_epi8(block, _mm_set1_epi8('Z' + 1)));
    return _mm_add_epi8(block, _mm_and_si128(capital, _mm_set1_epi8('a' - 'A')));
}

// Moves behind the ASCII characters that just add to the hash, up to the end, a separator, or one from 0x80
// on, which may be a lead byte.
const char* hash_plain(const char* p, unsigned& hash) {
    while (block_is_readable(p)) {
        const __m128i block = load_block(p);
        const unsigned special = special_bytes(block);
        const auto bytes = static_cast<unsigned>(std::countr_zero(special | 0x10000u));
        hash = hash_block(hash, folded(block), bytes);
        p += bytes;
        if (special != 0) return p;
    }
    for (; is_plain(*p); ++p)
        hash = hash * 257u + hash_name_folded({p, 1});
    return p;
}

} // namespace

PathPart first_part(const char* path) {
    unsigned hash = 0;
    const char* end = path;
    while (true) {
        end = hash_plain(end, hash);
        if (*end == '\0' || *end == '\\') return {path, end, hash};
        const bool double_byte = end[1] != '\0' && is_lead(static_cast<unsigned char>(*end));
        for (int bytes = double_byte ? 2 : 1; bytes > 0; --bytes)
            hash = hash * 257u + hash_name_folded({end++, 1});
    }
}

const char* last_separator(const char* path) {
    const char* last = nullptr;
    for (PathPart part = first_part(path); !part.last(); part = first_part(part.rest()))
        last = part.end;
    return last;
}

PathPart whole_name(const char* name) {
    const std::string_view text = name;
    return {name, name + text.size(), hash_name_folded(text)};
}

} // namespace qzr
