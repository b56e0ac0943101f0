// Values as trees in memory keep them. Most settings are a number or a short text, for which a whole variant
// record is twice too large and a block of its own a waste.
#pragma once

#include "variant/type_table.h"

namespace qzr {

// Plain bytes that may be moved by copying them; whoever holds them owns what they refer to.
struct PackedValue {
    static constexpr unsigned kRoom = 16;

    // Codes behind those of the variant types.
    static constexpr unsigned short kShortText = QZVT_COUNT;   // the text itself, with its terminator
    static constexpr unsigned short kRecord = QZVT_COUNT + 1;  // a pointer to a whole record
    static constexpr unsigned short kForeign = QZVT_COUNT + 2; // a pointer that belongs to the holder

    char bytes[kRoom] = {};
    unsigned short code = QZVT_EMPTY; // a type code, with the first bytes of such a value, or one from above

    // For lists that keep other things than values.
    template <class T>
    static PackedValue of_pointer(T* p) noexcept {
        PackedValue packed;
        std::memcpy(packed.bytes, &p, sizeof p);
        packed.code = kForeign;
        return packed;
    }
    template <class T>
    T* pointer() const noexcept {
        T* p;
        std::memcpy(&p, bytes, sizeof p);
        return p;
    }
};

// A copy of a value. Throws CXMemException.
PackedValue pack(const tagQZVARIANT& value);

// The value as a record that borrows everything, its text too: good as long as the packed one stays in place.
tagQZVARIANT borrowed(const PackedValue& packed);

// Whether the bytes are those of the record, and all there is to it: so with most values.
inline bool is_plain(const PackedValue& packed) {
    return packed.code < QZVT_COUNT && kVariantTypes[packed.code].ownership == Ownership::kNone;
}

// Puts a copy of the value in the place of what the record holds, as QZVariantCopy does. Throws
// CXMemException, and the record is empty then.
void copy_out(const PackedValue& packed, tagQZVARIANT& record);

// Gives up what the value owns; its bytes stay as they are. release() lets pass what an object throws while
// it is released, drop() does not.
void release(const PackedValue& packed);
void drop(const PackedValue& packed) noexcept;

} // namespace qzr
