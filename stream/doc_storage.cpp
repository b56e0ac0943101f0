#include "stream/doc_storage.h"

#include "stream/doc_stream.h"

#include <new>

namespace qzr {

IXStorage* CIXDocStorage::wrap(IXStorage* child) {
    auto storage = CQZRef<IXStorage>::Adopt(child);
    if (!storage) return nullptr;
    auto* const made = new (std::nothrow) CIXDocStorage(std::move(storage), top(), progress_, flags_);
    if (made == nullptr) throw CXMemException();
    return made;
}

IXStream* CIXDocStorage::wrap(IXStream* child) {
    auto stream = CQZRef<IXStream>::Adopt(child);
    if (!stream) return nullptr;
    auto* const made = new (std::nothrow) CIXDocStream(std::move(stream), top(), flags_);
    if (made == nullptr) throw CXMemException();
    return made;
}

} // namespace qzr

int new_CIXDocStorage(IXStorage* storage, QZRFC::IProgress* progress, IXStorage** out, int flags) {
    using namespace qzr;
    if (out == nullptr) return 1;
    *out = nullptr;
    if (storage != nullptr) {
        *out = new (std::nothrow) CIXDocStorage(CQZRef<IXStorage>::Share(storage),
                                                CQZRef<QZRFC::IProgress>::Share(progress), flags);
    }
    return 1;
}
