// CXStringW: paths.
#include "string/path_parts.h"
#include "string/path_reduction.h"
#include "string/string_access.h"

#include <string>

using namespace qzr;

namespace {

const wchar_t* find_last_of(const wchar_t* begin, const wchar_t* end, bool with_dot) {
    while (end != begin) {
        --end;
        if (*end == L':' || *end == L'\\' || *end == L'/' || (with_dot && *end == L'.')) return end;
    }
    return nullptr;
}

PathParts<wchar_t> parts_of(const wchar_t* text) {
    const wchar_t* const end = text + text_length(text);
    return path_parts(text, end, find_last_of(text, end, false), find_last_of(text, end, true));
}

wchar_t last_unit(const wchar_t* text) {
    const std::size_t length = text_length(text);
    return length != 0 ? text[length - 1] : L'\0';
}

} // namespace

CXStringW& CXStringW::AddDirDelim() {
    const wchar_t last = last_unit(m_pszData);
    if (last != L'/' && last != L'\\') ConcatCopy(L"\\", 1);
    return *this;
}

CXStringW& CXStringW::AddFileExtDelim() {
    if (last_unit(m_pszData) != L'.') ConcatCopy(L".", 1);
    return *this;
}

void CXStringW::ChangeFileExt(const wchar_t* ext) {
    if (ext == nullptr) ext = L"";
    if (*ext == L'.') ++ext;
    if (const wchar_t* const old = GetFileExt()) {
        ConcatCopyTo(static_cast<unsigned>(old - m_pszData), ext, static_cast<unsigned>(text_length(ext)));
        return;
    }
    const CXStringW added = CXStringW(L".") + ext; // ext may lie in this text
    ConcatCopy(added.GetData(), added.GetSize());
}

CXStringW CXStringW::FileExt() const { return {GetFileExt()}; }

CXStringW CXStringW::FileName() const { return {GetFileName()}; }

CXStringW CXStringW::FilePath() const {
    CXStringW path;
    const std::size_t size = parts_of(m_pszData).directory;
    if (size != 0) CXStringAccess::adopt(path, new_text_copy(m_pszData, size, std::uint64_t{size} + 2));
    return path;
}

const wchar_t* CXStringW::GetFileExt() const { return parts_of(m_pszData).extension; }

const wchar_t* CXStringW::GetFileName() const { return parts_of(m_pszData).name; }

int CXStringW::GetFileExt(wchar_t* buffer) const {
    const PathParts<wchar_t> parts = parts_of(m_pszData);
    const wchar_t* const from = parts.extension != nullptr ? parts.extension : parts.end;
    return give_out(buffer, from, static_cast<std::size_t>(parts.end - from));
}

int CXStringW::GetFileName(wchar_t* buffer) const {
    const PathParts<wchar_t> parts = parts_of(m_pszData);
    return give_out(buffer, parts.name, stem_length(parts));
}

int CXStringW::GetFilePath(wchar_t* buffer) const {
    const PathParts<wchar_t> parts = parts_of(m_pszData);
    return parts.has_directory ? give_out<wchar_t>(buffer, m_pszData, parts.directory) : 0;
}

int CXStringW::ReducePathString(int maxLength) {
    PathText path = m_pszData;
    if (!reduce_path(path, maxLength)) return 0;
    if (path != m_pszData) AssignCopy(path.data(), static_cast<unsigned>(path.size()));
    return 1;
}
