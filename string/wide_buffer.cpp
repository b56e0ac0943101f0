// CXStringW: the block and its life, construction, assignment, joining.
#include "string/string_access.h"

using namespace qzr;

namespace {

// Copied text has one spare unit behind its terminator; callers see it in GetAllocSize.
constexpr std::uint64_t copy_units_for(std::uint64_t length) { return length + 2; }

} // namespace

CXStringW::CXStringW() noexcept : m_pszData(empty_text<wchar_t>()) {}

CXStringW::CXStringW(const CXStringW& other) : m_pszData(other.m_pszData) {
    TextBlock* const block = header_of(m_pszData);
    if (block->count >= 0) {
        ++block->count;
        return;
    }
    m_pszData = empty_text<wchar_t>();
    if (!is_empty_text(other.m_pszData)) AssignCopy(other.m_pszData, other.GetSize());
}

CXStringW::CXStringW(const wchar_t* text) : m_pszData(empty_text<wchar_t>()) {
    if (text != nullptr && *text != 0) {
        const std::size_t length = text_length(text);
        m_pszData = new_text_copy(text, length, copy_units_for(length));
    }
}

CXStringW::~CXStringW() { release_text(m_pszData); }

CXStringW& CXStringW::operator=(const CXStringW& other) {
    if (m_pszData == other.m_pszData) return *this;
    if (is_empty_text(other.m_pszData)) {
        release_text(m_pszData);
    } else if (header_of(other.m_pszData)->count < 1) {
        AssignCopy(other.m_pszData, other.GetSize());
    } else {
        ++header_of(other.m_pszData)->count;
        replace_text(m_pszData, other.m_pszData);
    }
    return *this;
}

void* CXStringW::operator new(std::size_t size) { return mem_alloc(size); }
void CXStringW::operator delete(void* p) noexcept { mem_free(p); }

void CXStringW::Init() { m_pszData = empty_text<wchar_t>(); }

void CXStringW::AllocBuffer(unsigned n) {
    wchar_t* const fresh = new_text<wchar_t>(n);
    zero_rest(fresh, 0);
    replace_text(m_pszData, fresh);
}

void CXStringW::ReallocBuffer(unsigned n) { reserve_text(m_pszData, n); }

void CXStringW::Release() { release_text(m_pszData); }

void CXStringW::AssignCopy(const wchar_t* s, unsigned n) {
    if (s != m_pszData) replace_text(m_pszData, new_text_copy(s, n, copy_units_for(n)));
}

void CXStringW::ConcatCopy(const wchar_t* s, unsigned n) {
    if (s != nullptr) overwrite_text(m_pszData, GetSize(), s, n);
}

void CXStringW::ConcatCopyTo(unsigned pos, const wchar_t* s, unsigned n) {
    if (s == nullptr) return;
    const unsigned size = GetSize();
    overwrite_text(m_pszData, pos < size ? pos : size, s, n);
}

int CXStringW::GetAllocSize() const { return header_of(m_pszData)->capacity; }

wchar_t* CXStringW::GetBuffer(int n) {
    ReallocBuffer(n > 0 ? static_cast<unsigned>(n) + 1 : 1);
    header_of(m_pszData)->count = kLockedCount;
    return m_pszData;
}

void CXStringW::ReleaseBuffer(int) {
    if (is_empty_text(m_pszData)) return;
    TextBlock* const block = header_of(m_pszData);
    if (block->count == kLockedCount) block->count = 1;
}

// --- joining

CXStringW operator+(const CXStringW& a, const CXStringW& b) {
    return string_of(join_texts(a.GetData(), a.GetSize(), b.GetData(), b.GetSize()));
}

CXStringW operator+(const CXStringW& a, const wchar_t* b) {
    return string_of(join_texts(a.GetData(), a.GetSize(), b, length_or_0(b)));
}

CXStringW operator+(const wchar_t* a, const CXStringW& b) {
    return string_of(join_texts(a, length_or_0(a), b.GetData(), b.GetSize()));
}

CXStringW operator+(const CXStringW& a, wchar_t b) {
    return string_of(join_texts<wchar_t>(a.GetData(), a.GetSize(), &b, b != 0 ? 1 : 0));
}

CXStringW operator+(wchar_t a, const CXStringW& b) {
    return string_of(join_texts<wchar_t>(&a, a != 0 ? 1 : 0, b.GetData(), b.GetSize()));
}
