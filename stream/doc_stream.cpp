#include "stream/doc_stream.h"

#include "core/allocator.h"
#include "core/name_hash.h"

#include <new>
#include <utility>

namespace qzr {

namespace {

template <class I>
int hand_out(I* object, I** out) {
    if (out == nullptr) return 0;
    *out = CQZRef<I>::Share(object).Detach();
    return object != nullptr ? 1 : 0;
}

} // namespace

CIXDocStream::~CIXDocStream() {
    objects_.take_all([](KeptObject* kept) { block_delete(kept); });
}

int CIXDocStream::InternalQueryInterface(const std::type_info& iid, IQZUnknown** out) {
    if (CQZUnknownImpl::InternalQueryInterface(iid, out) != 0) return 1;
    if (iid == typeid(IDocStrorageInfo)) return AnswerQuery(static_cast<IDocStrorageInfo*>(this), out);
    return AnswerQuery(iid == typeid(IObjectKeeper) ? static_cast<IObjectKeeper*>(this) : nullptr, out);
}

int CIXDocStream::GetStorage(IXStorage** out) { return hand_out(top_ ? top_->storage() : nullptr, out); }

int CIXDocStream::GetDocStorage(IXStorage** out) { return hand_out<IXStorage>(top_.Get(), out); }

int CIXDocStream::GetRawStream(IXStream** out) { return hand_out(stream_.Get(), out); }

void CIXDocStream::keep_object(const char* key, CQZRef<IQZUnknown> object) {
    const unsigned hash = hash_name(key);
    if (KeptObject* const kept = objects_.find(hash)) {
        kept->object = std::move(object);
        return;
    }
    BlockPtr<KeptObject> made(block_new<KeptObject>());
    made->key = CXString(key);
    made->object = std::move(object);
    objects_.insert(made.get(), hash);
    static_cast<void>(made.release());
}

IQZUnknown* CIXDocStream::kept_object(const char* key) const {
    const KeptObject* const kept = objects_.find(hash_name(key));
    return kept != nullptr ? kept->object.Get() : nullptr;
}

} // namespace qzr

int new_CIXDocStream(IXStorage* docStorage, IXStream* stream, IXStream** out, int flags) {
    using namespace qzr;
    if (out == nullptr) return 1;
    *out = nullptr;
    if (stream != nullptr) {
        auto* const document = dynamic_cast<CIXDocStorage*>(docStorage);
        *out = new (std::nothrow) CIXDocStream(CQZRef<IXStream>::Share(stream),
                                               document != nullptr ? document->top() : nullptr, flags);
    }
    return 1;
}
