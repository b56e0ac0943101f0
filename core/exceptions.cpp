#include "qzexception.h"

#include "core/library.h"

#include <algorithm>
#include <atomic>
#include <cwchar>

namespace {

// A buffer whose first unit is zero is free. The last unit is zero for ever: no name reaches it.
constexpr unsigned kNameBuffers = 4;
constinit wchar_t names[kNameBuffers][QZR_EXCEPTION_NAME_UNITS] = {};

// How many exceptions show each of them.
constinit std::atomic<int> shown[kNameBuffers] = {};

// Null for a name that the program put in place of ours.
std::atomic<int>* count_of(const wchar_t* name) {
    for (unsigned i = 0; i < kNameBuffers; ++i)
        if (name == names[i]) return &shown[i];
    return nullptr;
}

const wchar_t* share(const wchar_t* name) {
    if (std::atomic<int>* const count = count_of(name)) ++*count;
    return name;
}

enum class Others { kKeepIt, kLoseIt };

// Frees the buffer when nobody shows it any more, or whoever else does. That is the last step, and a single
// one: from then on another thread's exception may have the buffer.
void give_up(const wchar_t* name, Others others) {
    std::atomic<int>* const count = count_of(name);
    if (count == nullptr) return;
    const bool last = --*count == 0;
    if (last || others == Others::kLoseIt) const_cast<wchar_t*>(name)[0] = L'\0';
}

// The first free buffer, else the first one. Storing the name's first unit is what takes a buffer, so an
// empty name takes none for good; done in one step, two threads that throw at once get different ones.
wchar_t* take_buffer(wchar_t first) {
    for (wchar_t(&name)[QZR_EXCEPTION_NAME_UNITS] : names) {
        wchar_t expected = 0;
        if (std::atomic_ref(name[0]).compare_exchange_strong(expected, first)) return name;
    }
    return names[0];
}

wchar_t* keep_name(const wchar_t* name) {
    wchar_t* const buffer = take_buffer(name != nullptr ? name[0] : L'\0');
    if (name == nullptr || name == buffer) return buffer;
    const std::size_t length = wcsnlen(name, QZR_EXCEPTION_NAME_UNITS - 1);
    std::wmemmove(buffer, name, length);
    buffer[length] = L'\0';
    return buffer;
}

} // namespace

CXException::CXException(unsigned code) noexcept : m_nCode(code), m_hModule(qzr::library().module) {}

CXException::~CXException() = default;

unsigned CXException::GetCode() const { return m_nCode; }

void CXException::Report() {}

CXMemException::CXMemException() noexcept : CXException(QZERR_MEMORY) {}

CXMemException::~CXMemException() = default;

CXFileException::CXFileException(unsigned code, unsigned operation, const wchar_t* fileName) noexcept
    : CXException(code), m_pszFileName(share(keep_name(fileName))), m_nOperation(operation) {}

CXFileException::CXFileException(const CXFileException& other) noexcept
    : CXException(other), m_pszFileName(share(other.m_pszFileName)), m_nOperation(other.m_nOperation) {}

CXFileException& CXFileException::operator=(const CXFileException& other) noexcept {
    const wchar_t* const former = m_pszFileName;
    CXException::operator=(other);
    m_pszFileName = share(other.m_pszFileName);
    m_nOperation = other.m_nOperation;
    give_up(former, Others::kKeepIt);
    return *this;
}

// Any copy's end frees the buffer, though others may still point there.
CXFileException::~CXFileException() { give_up(m_pszFileName, Others::kLoseIt); }

CXIFaceException::CXIFaceException(const std::type_info& iid) noexcept
    : CXException(QZERR_INTERFACE), m_pIid(&iid) {}

CXIFaceException::~CXIFaceException() = default;

CXEofException::CXEofException() noexcept : CXException(QZERR_EOF) {}

CXEofException::~CXEofException() = default;
