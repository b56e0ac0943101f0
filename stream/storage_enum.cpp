#include "stream/storage_enum.h"

#include "core/enum_snapshot.h"
#include "core/scope_exit.h"
#include "stream/element_name.h"
#include "stream/stg_error.h"

namespace qzr {

namespace {

// No file name: it is the enumeration that failed.
void check_enumeration(HRESULT result) {
    if (FAILED(result)) throw CXException(storage_error_code(result));
}

} // namespace

CTEnum<const char*>* enum_elements(IStorage& storage, DWORD kind) {
    CQZRef<IEnumSTATSTG> elements;
    check_enumeration(storage.EnumElements(0, nullptr, 0, elements.Put()));
    auto names = NameSnapshot<char>::make();
    STATSTG element = {};
    while (true) {
        const HRESULT result = elements->Next(1, &element, nullptr);
        check_enumeration(result);
        if (result != S_OK) break;
        const ScopeExit free_name([&element] { CoTaskMemFree(element.pwcsName); });
        if (element.type == kind) names->add(NarrowElementName(element.pwcsName).text());
    }
    return names.Detach();
}

} // namespace qzr
