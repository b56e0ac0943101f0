#include "param/memory/packed_value.h"

#include "core/allocator.h"
#include "core/move_bytes.h"
#include "string/scan.h"
#include "variant/record.h"

namespace qzr {

namespace {

// Records that do not fit own nothing: real rectangles, and those with a code of no type.
bool fits(const tagQZVARIANT& value) {
    const VariantType* const type = variant_type(value.vt);
    return type != nullptr && type->memory_size <= PackedValue::kRoom;
}

// Over a record that owns nothing; it is empty when there is no memory for the copy. Most values are put
// together in their place: one that is made elsewhere and moved at once keeps the processor waiting for its
// parts, a twentieth of the time of a look-up.
void write_copy(const PackedValue& packed, tagQZVARIANT& record) {
    set_empty(record);
    if (is_plain(packed)) {
        std::memcpy(payload(record), packed.bytes, PackedValue::kRoom);
        record.vt = packed.code;
    } else if (packed.code == PackedValue::kShortText) {
        record.pszVal = mem_dup(packed.bytes, text_length(packed.bytes) + 1);
        record.vt = QZVT_TEXT;
    } else {
        record = duplicate_of(borrowed(packed));
    }
}

} // namespace

PackedValue pack(const tagQZVARIANT& value) {
    if (!fits(value)) {
        PackedValue whole = PackedValue::of_pointer(block_new<tagQZVARIANT>(value));
        whole.code = PackedValue::kRecord;
        return whole;
    }
    PackedValue packed;
    if (value.vt == QZVT_TEXT && value.pszVal != nullptr) {
        const std::size_t size = text_length(value.pszVal) + 1;
        if (size <= PackedValue::kRoom) {
            move_bytes(packed.bytes, value.pszVal, size);
            packed.code = PackedValue::kShortText;
            return packed;
        }
    }
    const tagQZVARIANT own = duplicate_of(value);
    std::memcpy(packed.bytes, payload(own), PackedValue::kRoom);
    packed.code = value.vt;
    return packed;
}

tagQZVARIANT borrowed(const PackedValue& packed) {
    if (packed.code == PackedValue::kRecord) return *packed.pointer<tagQZVARIANT>();
    tagQZVARIANT record = empty_record();
    if (packed.code == PackedValue::kShortText) {
        record.vt = QZVT_TEXT;
        record.pszVal = const_cast<char*>(packed.bytes);
    } else {
        record.vt = packed.code;
        std::memcpy(payload(record), packed.bytes, PackedValue::kRoom);
    }
    return record;
}

void copy_out(const PackedValue& packed, tagQZVARIANT& record) {
    if (!owns_something(record)) {
        write_copy(packed, record);
        return;
    }
    const tagQZVARIANT value = borrowed(packed);
    QZVariantCopy(&record, &value);
}

void release(const PackedValue& packed) {
    if (packed.code == PackedValue::kRecord)
        block_delete(packed.pointer<tagQZVARIANT>());
    else if (packed.code < QZVT_COUNT && kVariantTypes[packed.code].release != nullptr)
        kVariantTypes[packed.code].release(borrowed(packed));
}

void drop(const PackedValue& packed) noexcept {
    try {
        release(packed);
    } catch (...) {
        // As a variant that goes out of scope: an object that fails while it goes must not end the program.
    }
}

} // namespace qzr
