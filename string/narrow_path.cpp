// CXString: paths.
#include "string/multibyte.h"
#include "string/path_parts.h"
#include "string/path_reduction.h"
#include "string/string_access.h"

#include <string>

using namespace qzr;

namespace {

constexpr char kDirectoryDelimiters[] = ":\\/";
constexpr char kAllDelimiters[] = ":\\/.";

PathParts<char> parts_of(const char* text) {
    const LeadBytes leads = lead_bytes();
    const char* const end = text + text_length(text);
    return path_parts(text, end, mb_find_last_of(text, end, kDirectoryDelimiters, leads),
                      mb_find_last_of(text, end, kAllDelimiters, leads));
}

// The last character when it is an ASCII one, else 0.
char last_ascii(const char* text) {
    const std::size_t length = text_length(text);
    if (length == 0) return 0;
    const LeadBytes leads = lead_bytes();
    const char* const last = mb_last(text, text + length, leads);
    return mb_value(last, leads) < 0x80 ? *last : 0;
}

using BytesText = std::basic_string<char, std::char_traits<char>, HeapAllocator<char>>;

PathText characters_of(const char* text) {
    const LeadBytes leads = lead_bytes();
    PathText characters;
    for (; *text != 0; text = mb_next(text, leads))
        characters += mb_value(text, leads);
    return characters;
}

BytesText bytes_of(const PathText& characters) {
    const LeadBytes leads = lead_bytes();
    BytesText bytes;
    for (const wchar_t c : characters)
        bytes += mb_encode(c, leads).bytes;
    return bytes;
}

} // namespace

CXString& CXString::AddDirDelim() {
    const char last = last_ascii(m_pszData);
    if (last != '/' && last != '\\') ConcatCopy("\\", 1);
    return *this;
}

CXString& CXString::AddFileExtDelim() {
    if (last_ascii(m_pszData) != '.') ConcatCopy(".", 1);
    return *this;
}

void CXString::ChangeFileExt(const char* ext) {
    if (ext == nullptr) ext = "";
    if (*ext == '.') ++ext;
    if (const char* const old = GetFileExt()) {
        ConcatCopyTo(static_cast<unsigned>(old - m_pszData), ext, static_cast<unsigned>(text_length(ext)));
        return;
    }
    const CXString added = CXString(".") + ext; // ext may lie in this text
    ConcatCopy(added.GetData(), added.GetSize());
}

CXString CXString::FileExt() const { return {GetFileExt()}; }

CXString CXString::FileName() const { return {GetFileName()}; }

CXString CXString::FilePath() const {
    CXString path;
    const std::size_t size = parts_of(m_pszData).directory;
    if (size != 0) CXStringAccess::adopt(path, new_text_copy(m_pszData, size, std::uint64_t{size} + 2));
    return path;
}

const char* CXString::GetFileExt() const { return parts_of(m_pszData).extension; }

const char* CXString::GetFileName() const { return parts_of(m_pszData).name; }

int CXString::GetFileExt(char* buffer) const {
    const PathParts<char> parts = parts_of(m_pszData);
    const char* const from = parts.extension != nullptr ? parts.extension : parts.end;
    return give_out(buffer, from, static_cast<std::size_t>(parts.end - from));
}

int CXString::GetFileName(char* buffer) const {
    const PathParts<char> parts = parts_of(m_pszData);
    return give_out(buffer, parts.name, stem_length(parts));
}

int CXString::GetFilePath(char* buffer) const {
    const PathParts<char> parts = parts_of(m_pszData);
    return parts.has_directory ? give_out<char>(buffer, m_pszData, parts.directory) : 0;
}

int CXString::ReducePathString(int maxLength) {
    PathText path = characters_of(m_pszData);
    const std::size_t length = path.size();
    if (!reduce_path(path, maxLength)) return 0;
    if (path.size() == length && path == characters_of(m_pszData)) return 1;
    const BytesText reduced = bytes_of(path);
    AssignCopy(reduced.data(), static_cast<unsigned>(reduced.size()));
    return 1;
}
