// Values to and from plain typed memory.
#include "variant/record.h"

using namespace qzr;

namespace {

// Empty values have no field in memory.
const VariantType* bindable_type(unsigned short vt) { return vt != QZVT_EMPTY ? variant_type(vt) : nullptr; }

// A blob's bytes change hands, or stay shared, without a copy.
bool is_copied(const VariantType& type) {
    return type.ownership != Ownership::kNone && type.ownership != Ownership::kBytes;
}

bool is_same_blob(const tagQZVARIANT& a, const tagQZVARIANT& b) {
    return a.vt == QZVT_BLOB && b.vt == QZVT_BLOB && a.blobVal.pBlobData == b.blobVal.pBlobData;
}

} // namespace

int QZVariantBindFromValue(unsigned short vt, void* value, tagQZVARIANT* out) {
    const VariantType* type = bindable_type(vt);
    tagQZVARIANT fresh = empty_record();
    fresh.vt = vt;
    if (type != nullptr) {
        std::memcpy(payload(fresh), value, type->memory_size);
        if (is_copied(*type)) type->duplicate(fresh);
    }
    // Bytes that out owns already must not be freed as its old value.
    if (is_same_blob(fresh, *out)) out->vt = QZVT_EMPTY;
    replace_value(*out, fresh);
    return type != nullptr ? 1 : 0;
}

int QZVariantBindToValue(unsigned short vt, void* value, const tagQZVARIANT* src) {
    const VariantType* type = bindable_type(vt);
    if (type == nullptr) return 0;
    if (!is_copied(*type)) {
        std::memmove(value, payload(*src), type->memory_size);
        return 1;
    }
    tagQZVARIANT fresh = *src;
    fresh.vt = vt;
    type->duplicate(fresh);
    // What the field held goes last: it may be src's own value.
    tagQZVARIANT old = empty_record();
    old.vt = vt;
    std::memcpy(payload(old), value, type->memory_size);
    std::memcpy(value, payload(fresh), type->memory_size);
    type->release(old);
    return 1;
}
