// The table of the variant types: one row per type code. Clearing, copying, comparing, binding and the stored
// forms walk it; nothing else branches on type codes, so a fact about a type is written here and nowhere
// else.
#pragma once

#include "qzvariant.h"

#include <cstring>

namespace qzr {

enum class Ownership : unsigned char {
    kNone,      // the value is all there is
    kText,      // char*, a block of the library's allocator
    kWideText,  // wchar_t*, the same
    kBytes,     // a blob record, its bytes a block of the allocator
    kReference, // IQZUnknown*, one reference
};

struct VariantType {
    unsigned char memory_size; // bytes that a field of this type takes in plain memory
    unsigned char stream_size; // bytes of the value in a stream; 0 when it varies
    Ownership ownership;

    // Gives up what a record of this type owns; the record keeps its bytes. Null when it owns nothing.
    void (*release)(const tagQZVARIANT& value);
    // Makes a record independent that carries the bytes of another. Throws CXMemException, the record then
    // still refers to what is the other's. Null when nothing is owned.
    void (*duplicate)(tagQZVARIANT& value);
    // Compares two records of this type.
    bool (*equal)(const tagQZVARIANT& left, const tagQZVARIANT& right);
};

extern const VariantType kVariantTypes[QZVT_COUNT];

// The row of a code; null for an invalid one.
inline const VariantType* variant_type(unsigned short vt) {
    return vt < QZVT_COUNT ? &kVariantTypes[vt] : nullptr;
}

inline bool owns_something(const tagQZVARIANT& v) {
    return v.vt < QZVT_COUNT && kVariantTypes[v.vt].ownership != Ownership::kNone;
}

// Every byte zero, those of the union's widest member too.
inline void set_empty(tagQZVARIANT& v) { std::memset(&v, 0, sizeof v); }

inline tagQZVARIANT empty_record() {
    tagQZVARIANT v;
    set_empty(v);
    return v;
}

// The bytes of the value, whatever its type.
inline void* payload(tagQZVARIANT& v) { return &v.rrectVal; }
inline const void* payload(const tagQZVARIANT& v) { return &v.rrectVal; }

} // namespace qzr
