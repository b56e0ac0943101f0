#include "variant/type_table.h"

#include "core/allocator.h"
#include "variant/blob.h"
#include "variant/equality.h"
#include "variant/text.h"

namespace qzr {

namespace {

void free_text(const tagQZVARIANT& v) { mem_free(v.pszVal); }
void own_text(tagQZVARIANT& v) { v.pszVal = duplicate_text(v.pszVal); }

void free_wide_text(const tagQZVARIANT& v) { mem_free(v.pwszVal); }
void own_wide_text(tagQZVARIANT& v) { v.pwszVal = duplicate_text(v.pwszVal); }

void free_bytes(const tagQZVARIANT& v) { mem_free(v.blobVal.pBlobData); }
void own_bytes(tagQZVARIANT& v) { v.blobVal = duplicate_blob(v.blobVal); }

void release_object(const tagQZVARIANT& v) {
    if (v.pUnkVal != nullptr) v.pUnkVal->Release();
}
void own_reference(tagQZVARIANT& v) {
    if (v.pUnkVal != nullptr) v.pUnkVal->AddRef();
}

constexpr VariantType plain(unsigned char memory_size, unsigned char stream_size,
                            bool (*equal)(const tagQZVARIANT&, const tagQZVARIANT&)) {
    return {memory_size, stream_size, Ownership::kNone, nullptr, nullptr, equal};
}

} // namespace

const VariantType kVariantTypes[QZVT_COUNT] = {
    plain(0, 4, equal_empty),                                      // QZVT_EMPTY: streams hold four zero bytes
    plain(4, 4, equal_32_bits),                                    // QZVT_BOOL
    plain(1, 1, equal_8_bits),                                     // QZVT_UCHAR
    plain(2, 2, equal_16_bits),                                    // QZVT_USHORT
    plain(4, 4, equal_32_bits),                                    // QZVT_ULONG
    plain(4, 4, equal_32_bits),                                    // QZVT_INT
    plain(4, 4, equal_32_bits),                                    // QZVT_UINT
    plain(4, 4, equal_32_bits),                                    // QZVT_LONG
    plain(8, 8, equal_double),                                     // QZVT_DOUBLE
    plain(4, 4, equal_float),                                      // QZVT_FLOAT
    {8, 0, Ownership::kText, free_text, own_text, equal_text},     // QZVT_TEXT
    plain(8, 8, equal_size),                                       // QZVT_SIZE
    plain(16, 16, equal_real_size),                                // QZVT_RSIZE
    plain(8, 8, equal_point),                                      // QZVT_POINT
    plain(16, 16, equal_real_point),                               // QZVT_RPOINT
    plain(16, 16, equal_rect),                                     // QZVT_RECT
    plain(32, 32, equal_real_rect),                                // QZVT_RRECT
    {16, 0, Ownership::kBytes, free_bytes, own_bytes, equal_blob}, // QZVT_BLOB
    {8, 0, Ownership::kReference, release_object, own_reference, equal_object},   // QZVT_OBJECT
    {8, 0, Ownership::kWideText, free_wide_text, own_wide_text, equal_wide_text}, // QZVT_WTEXT
};

} // namespace qzr
