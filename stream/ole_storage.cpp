#include "stream/ole_storage.h"

#include "stream/element_name.h"
#include "stream/ole_stream.h"
#include "stream/stg_error.h"
#include "stream/storage_enum.h"

#include <new>
#include <utility>

namespace qzr {

// --- life ----------------------------------------------------------------------------------------------

CStorage::CStorage(const wchar_t* path, int mode, CStorage* parent)
    : path_(path), mode_(mode), parent_(CQZRef<CStorage>::Share(parent)) {}

CStorage::~CStorage() {
    if (storage_) Commit();
}

CQZRef<CStorage> CStorage::make(const wchar_t* path, int mode, CStorage* parent) {
    auto* const made = new (std::nothrow) CStorage(path, mode, parent);
    if (made == nullptr) throw CXMemException();
    return CQZRef<CStorage>::Adopt(made);
}

// The parent goes after its child. The loop keeps a chain of many levels from being released one inside the
// other.
unsigned CStorage::InternalRelease() {
    if (--m_cRef != 0) return m_cRef;
    for (CStorage* dying = this; dying != nullptr;) {
        CStorage* const parent = dying->parent_.Detach();
        delete dying;
        dying = parent != nullptr && --parent->m_cRef == 0 ? parent : nullptr;
    }
    return 0;
}

// Not every platform survives that a child is committed which was removed while it was open.
int CStorage::Commit() {
    if (mode_ == QZSTORAGE_READ_ONLY) return S_OK;
    STATSTG statistics = {};
    if (storage_->Stat(&statistics, STATFLAG_NONAME) == STG_E_REVERTED) return STG_E_REVERTED;
    return storage_->Commit(STGC_DEFAULT);
}

IXStorage* CStorage::GetParent() { return CQZRef<CStorage>(parent_).Detach(); }

// --- storages ------------------------------------------------------------------------------------------

IXStorage* CStorage::CreateStorage(const char* name) {
    const WideElementName element(name);
    auto made = make_child();
    check_storage(
        storage_->CreateStorage(element.text(), storage_flags(mode_) | STGM_CREATE, 0, 0, made->place()),
        QZOP_OPEN, element.text());
    return made.Detach();
}

IXStorage* CStorage::OpenStorage(const char* name) {
    const WideElementName element(name);
    auto opened = make_child();
    check_storage(
        storage_->OpenStorage(element.text(), nullptr, storage_flags(mode_), nullptr, 0, opened->place()),
        QZOP_OPEN, element.text());
    return opened.Detach();
}

// --- streams -------------------------------------------------------------------------------------------

namespace {

CQZRef<CStream> make_stream(const wchar_t* name) {
    auto* const made = new (std::nothrow) CStream(name);
    if (made == nullptr) throw CXMemException();
    return CQZRef<CStream>::Adopt(made);
}

} // namespace

IXStream* CStorage::CreateStream(const char* name) {
    const WideElementName element(name);
    auto made = make_stream(element.text());
    const HRESULT result =
        storage_->CreateStream(element.text(), access_flags(mode_) | STGM_CREATE, 0, 0, made->place());
    return SUCCEEDED(result) ? made.Detach() : nullptr;
}

IXStream* CStorage::OpenStream(const char* name) {
    const WideElementName element(name);
    auto opened = make_stream(element.text());
    const HRESULT result =
        storage_->OpenStream(element.text(), nullptr, access_flags(mode_), 0, opened->place());
    return SUCCEEDED(result) ? opened.Detach() : nullptr;
}

// --- both ----------------------------------------------------------------------------------------------

void CStorage::destroy(const char* name) {
    check_storage(storage_->DestroyElement(WideElementName(name).text()), QZOP_REMOVE_ELEMENT, nullptr);
}

// The platform removes what has the name, whichever of the two it is.
void CStorage::DestroyStorage(const char* name) { destroy(name); }
void CStorage::DestroyStream(const char* name) { destroy(name); }

CTEnum<const char*>* CStorage::EnumStorages() { return enum_elements(*storage_, STGTY_STORAGE); }
CTEnum<const char*>* CStorage::EnumStreams() { return enum_elements(*storage_, STGTY_STREAM); }

} // namespace qzr

void* Storage_GetOLEStorage(IXStorage* storage) {
    const auto* const ours = dynamic_cast<qzr::CStorage*>(storage);
    return ours != nullptr ? qzr::PlatformStorage::Share(ours->platform()).Detach() : nullptr;
}
