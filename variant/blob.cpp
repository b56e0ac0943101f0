#include "variant/blob.h"

#include "core/allocator.h"

#include <cstring>

namespace qzr {

tagQZBLOB duplicate_blob(const tagQZBLOB& source) {
    const bool has_bytes = source.cbSize != 0 && source.pBlobData != nullptr;
    return {source.cbSize, has_bytes ? mem_dup(source.pBlobData, source.cbSize) : nullptr};
}

bool same_bytes(const tagQZBLOB& a, const tagQZBLOB& b) {
    if (a.cbSize != b.cbSize) return false;
    if (a.cbSize == 0 || a.pBlobData == b.pBlobData) return true;
    if (a.pBlobData == nullptr || b.pBlobData == nullptr) return false;
    return std::memcmp(a.pBlobData, b.pBlobData, a.cbSize) == 0;
}

} // namespace qzr

QZBlob::QZBlob() : tagQZBLOB{0, nullptr} {}

QZBlob::QZBlob(unsigned long n) : tagQZBLOB{static_cast<unsigned>(n), n != 0 ? qzr::mem_alloc(n) : nullptr} {}

QZBlob::QZBlob(const tagQZBLOB& source) : tagQZBLOB(qzr::duplicate_blob(source)) {}
QZBlob::QZBlob(const tagQZBLOB* source) : tagQZBLOB(qzr::duplicate_blob(*source)) {}
QZBlob::QZBlob(const QZBlob& source) : tagQZBLOB(qzr::duplicate_blob(source)) {}

QZBlob::~QZBlob() { qzr::mem_free(pBlobData); }

// The copy comes first: the source may be this record, or another over the same bytes.
QZBlob& QZBlob::operator=(const tagQZBLOB* source) {
    const tagQZBLOB fresh = qzr::duplicate_blob(*source);
    qzr::mem_free(pBlobData);
    static_cast<tagQZBLOB&>(*this) = fresh;
    return *this;
}

QZBlob& QZBlob::operator=(const tagQZBLOB& source) { return *this = &source; }
QZBlob& QZBlob::operator=(const QZBlob& source) { return *this = static_cast<const tagQZBLOB*>(&source); }

void QZBlob::Clear() {
    qzr::mem_free(pBlobData);
    static_cast<tagQZBLOB&>(*this) = {0, nullptr};
}

int QZBlob::operator==(const tagQZBLOB& other) const { return qzr::same_bytes(*this, other) ? 1 : 0; }
int QZBlob::operator==(const tagQZBLOB* other) const { return qzr::same_bytes(*this, *other) ? 1 : 0; }
int QZBlob::operator==(const QZBlob& other) const { return qzr::same_bytes(*this, other) ? 1 : 0; }
