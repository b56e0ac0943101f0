#include "core/name_hash.h"

#include "core/name_hash_block.h"

#include <bit>

namespace qzr {

unsigned hash_text(const char* name) noexcept {
    unsigned hash = 0;
    while (block_is_readable(name)) {
        const __m128i block = load_block(name);
        const auto ends =
            static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(block, _mm_setzero_si128())));
        const auto bytes = static_cast<unsigned>(std::countr_zero(ends | 0x10000u));
        hash = hash_block(hash, block, bytes);
        if (ends != 0) return hash;
        name += bytes;
    }
    for (; *name != '\0'; ++name)
        hash = hash_step(hash, *name);
    return hash;
}

} // namespace qzr
