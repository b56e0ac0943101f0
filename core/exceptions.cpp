#include "qzexception.h"

#include "core/library.h"

#include <algorithm>
#include <atomic>
#include <cwchar>

namespace {

// A buffer whose first unit is zero is free. The last unit is zero for ever: no name reaches it.
constexpr unsigned kNameBuffers = 4;
constinit wchar_t names[kNameBuffers][QZR_EXCEPTION_NAME_UNITS] = {};

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
    : CXException(code), m_pszFileName(keep_name(fileName)), m_nOperation(operation) {}

CXFileException::CXFileException(const CXFileException& other) noexcept = default;

CXFileException& CXFileException::operator=(const CXFileException& other) noexcept = default;

// Any copy's end frees the buffer, though others may still point there.
CXFileException::~CXFileException() { const_cast<wchar_t*>(m_pszFileName)[0] = L'\0'; }

CXIFaceException::CXIFaceException(const std::type_info& iid) noexcept
    : CXException(QZERR_INTERFACE), m_pIid(&iid) {}

CXIFaceException::~CXIFaceException() = default;

CXEofException::CXEofException() noexcept : CXException(QZERR_EOF) {}

CXEofException::~CXEofException() = default;
