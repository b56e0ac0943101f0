// The instances of the component templates that the library exports. Clients that derive from the templates
// make their own; interface ids match all the same, because they are compared by name.
#include "qzfile.h"
#include "qzheap.h"
#include "qzobject.h"
#include "qzparam.h"
#include "qzstream.h"

template class QZR_API CQZUnknownImpl<IQZUnknown>;
template class QZR_API CQZUnknownImpl<IQZProperty>;
template class QZR_API CQZUnknownImpl<IParam>;
template class QZR_API CQZUnknownImpl<IPersistXStream>;
template class QZR_API CQZUnknownImpl<IXFile>;
template class QZR_API CQZUnknownImpl<IXOutFile>;
template class QZR_API CQZUnknownImpl<IXStorage>;
template class QZR_API CQZUnknownImpl<IXStream>;
template class QZR_API CQZUnknownImpl<IHeap>;
template class QZR_API CQZUnknownImpl<CTEnum<char*>>;
template class QZR_API CQZUnknownImpl<CTEnum<const char*>>;
template class QZR_API CQZUnknownImpl<CTEnum<const wchar_t*>>;
template class QZR_API CQZUnknownImpl<CTEnum<IQZUnknown*>>;
template class QZR_API CQZUnknownImplParent<IParam, IParam>;

unsigned CUnknownInternal::AddRef() { return ++m_cRef; }

unsigned CUnknownInternal::Release() { return m_cRef == 0 ? 0 : --m_cRef; }

int CUnknownInternal::QueryInterface(const std::type_info& iid, IQZUnknown** out) {
    IQZUnknown* const found = iid == typeid(IQZUnknown) ? this : nullptr;
    if (out != nullptr) {
        *out = found;
        if (found != nullptr) found->AddRef();
    }
    return found != nullptr ? 1 : 0;
}
