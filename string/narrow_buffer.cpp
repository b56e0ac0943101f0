// CXString: the block and its life, construction, assignment, joining.
#include "string/multibyte.h"
#include "string/string_access.h"

using namespace qzr;

CXString::CXString() noexcept : m_pszData(empty_text<char>()) {}

CXString::CXString(const CXString& other) : m_pszData(other.m_pszData) {
    TextBlock* const block = header_of(m_pszData);
    if (block->count >= 0) {
        ++block->count;
        return;
    }
    m_pszData = empty_text<char>();
    if (!is_empty_text(other.m_pszData)) AssignCopy(other.m_pszData, other.GetSize());
}

CXString::CXString(const char* text) : m_pszData(empty_text<char>()) {
    if (text != nullptr && *text != 0) {
        const std::size_t length = text_length(text);
        m_pszData = new_text_copy(text, length, std::uint64_t{length} + 1);
    }
}

CXString::~CXString() { release_text(m_pszData); }

CXString& CXString::operator=(const CXString& other) {
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

CXString& CXString::operator=(const wchar_t* text) { return *this = CXString(text); }

void* CXString::operator new(std::size_t size) { return mem_alloc(size); }
void CXString::operator delete(void* p) noexcept { mem_free(p); }

void CXString::Init() { m_pszData = empty_text<char>(); }

void CXString::AllocBuffer(unsigned n) {
    char* const fresh = new_text<char>(n);
    zero_rest(fresh, 0);
    replace_text(m_pszData, fresh);
}

void CXString::ReallocBuffer(unsigned n) { reserve_text(m_pszData, n); }

void CXString::Release() { release_text(m_pszData); }

// The source may lie in the own text: the old block lives until the copy is made.
void CXString::AssignCopy(const char* s, unsigned n) {
    if (s != m_pszData) replace_text(m_pszData, new_text_copy(s, n, std::uint64_t{n} + 1));
}

void CXString::ConcatCopy(const char* s, unsigned n) {
    overwrite_text(m_pszData, GetSize(), s, s != nullptr ? n : 0);
}

void CXString::ConcatCopyTo(unsigned pos, const char* s, unsigned n) {
    const unsigned size = GetSize();
    overwrite_text(m_pszData, pos < size ? pos : size, s, s != nullptr ? n : 0);
}

// The capacity counts both bytes of a double-byte character even when the second one is zero.
void CXString::AssignChar(wchar_t c) {
    const LeadBytes leads = lead_bytes();
    const MbChar encoded = mb_encode(c, leads);
    const unsigned bytes = leads(static_cast<char>(c >> 8)) ? 2 : 1;
    replace_text(m_pszData, new_text_copy(encoded.bytes, bytes, bytes + 1U));
}

int CXString::GetAllocSize() const { return header_of(m_pszData)->capacity; }

char* CXString::GetBuffer(int n) {
    ReallocBuffer(n > 0 ? static_cast<unsigned>(n) + 1 : 1);
    header_of(m_pszData)->count = kLockedCount;
    return m_pszData;
}

void CXString::ReleaseBuffer(int) {
    if (is_empty_text(m_pszData)) return;
    TextBlock* const block = header_of(m_pszData);
    if (block->count == kLockedCount) block->count = 1;
}

// --- joining

CXString operator+(const CXString& a, const CXString& b) {
    return string_of(join_texts(a.GetData(), a.GetSize(), b.GetData(), b.GetSize()));
}

CXString operator+(const CXString& a, const char* b) {
    return string_of(join_texts(a.GetData(), a.GetSize(), b, length_or_0(b)));
}

CXString operator+(const char* a, const CXString& b) {
    return string_of(join_texts(a, length_or_0(a), b.GetData(), b.GetSize()));
}

CXString operator+(const CXString& a, wchar_t b) {
    const MbChar encoded = mb_encode(b, lead_bytes());
    return string_of(join_texts<char>(a.GetData(), a.GetSize(), encoded.bytes, encoded.size));
}

CXString operator+(wchar_t a, const CXString& b) {
    const MbChar encoded = mb_encode(a, lead_bytes());
    return string_of(join_texts<char>(encoded.bytes, encoded.size, b.GetData(), b.GetSize()));
}
