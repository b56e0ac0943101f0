#include "dictionary/wld_text.h"

#include "system/failure.h"

#include <algorithm>
#include <limits>
#include <windows.h>

namespace tool {

namespace {

int as_int(std::size_t size) {
    if (size > static_cast<std::size_t>(std::numeric_limits<int>::max())) fail("a text is too long");
    return static_cast<int>(size);
}

std::optional<std::wstring> to_wide(unsigned page, unsigned long flags, std::string_view bytes) {
    if (bytes.empty()) return std::wstring();
    std::wstring text(bytes.size(), L'\0'); // no page has more units than bytes
    const int units = MultiByteToWideChar(page, flags, bytes.data(), as_int(bytes.size()), text.data(),
                                          as_int(text.size()));
    if (units <= 0) return std::nullopt;
    text.resize(static_cast<std::size_t>(units));
    return text;
}

} // namespace

CodePage::CodePage(unsigned number) : number_(number != 0 ? number : GetACP()) {
    CPINFO info = {};
    if (GetCPInfo(number_, &info) == 0) fail("the system has no code page " + std::to_string(number_));
    for (const BYTE* range = info.LeadByte; range[0] != 0; range += 2)
        for (unsigned byte = range[0]; byte <= range[1]; ++byte)
            leads_[byte] = true;
}

std::size_t CodePage::character_size(std::string_view text) const {
    return leads_[static_cast<unsigned char>(text[0])] && text.size() > 1 ? 2 : 1;
}

std::optional<std::wstring> CodePage::decode(std::string_view bytes) const {
    return to_wide(number_, MB_ERR_INVALID_CHARS, bytes);
}

std::wstring CodePage::decode_anyway(std::string_view bytes) const {
    return to_wide(number_, 0, bytes).value_or(std::wstring());
}

std::optional<std::string> CodePage::encode(std::wstring_view text) const {
    if (text.empty()) return std::string();
    std::string bytes(text.size() * 4, '\0');
    const bool is_utf8 = number_ == CP_UTF8;
    BOOL lossy = FALSE;
    const int size =
        WideCharToMultiByte(number_, is_utf8 ? 0 : WC_NO_BEST_FIT_CHARS, text.data(), as_int(text.size()),
                            bytes.data(), as_int(bytes.size()), nullptr, is_utf8 ? nullptr : &lossy);
    if (size <= 0 || lossy != FALSE) return std::nullopt;
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
}

std::optional<unsigned> code_page_of_language(unsigned language) {
    if (language == 0 || IsValidLocale(language, LCID_SUPPORTED) == 0) return std::nullopt;
    DWORD page = 0;
    GetLocaleInfoW(language, LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                   reinterpret_cast<wchar_t*>(&page), sizeof page / sizeof(wchar_t));
    return page;
}

std::string unescaped(std::string_view bytes, const CodePage& page) {
    static constexpr std::string_view kLetters = "nrt";
    static constexpr std::string_view kControls = "\n\r\t";
    std::string text;
    while (!bytes.empty()) {
        if (bytes[0] == '\\') {
            bytes.remove_prefix(std::min(bytes.find_first_not_of('\\'), bytes.size()));
            if (bytes.empty()) break;
            if (const std::size_t control = kLetters.find(bytes[0]); control != std::string_view::npos) {
                text += kControls[control];
                bytes.remove_prefix(1);
                continue;
            }
            text += '\\';
        }
        const std::size_t size = page.character_size(bytes);
        text += bytes.substr(0, size);
        bytes.remove_prefix(size);
    }
    return text;
}

std::optional<std::string> escaped(std::wstring_view text, const CodePage& page) {
    std::wstring entry;
    for (std::size_t i = 0; i < text.size(); ++i) {
        switch (text[i]) {
        case L'\n':
            entry += L"\\n";
            break;
        case L'\r':
            entry += L"\\r";
            break;
        case L'\t':
            entry += L"\\t";
            break;
        case L'\0':
            return std::nullopt;
        case L'\\':
            if (i + 1 == text.size() || std::wstring_view(L"nrt\\\n\r\t").find(text[i + 1]) != text.npos)
                return std::nullopt;
            entry += L'\\';
            break;
        default:
            entry += text[i];
        }
    }
    return page.encode(entry);
}

unsigned hash_of(std::wstring_view text) {
    unsigned hash = 0;
    for (const wchar_t unit : text)
        hash = hash * 257 + unit;
    return hash;
}

bool begins_with_context(std::string_view source) {
    const std::string_view context = source.substr(0, source.find("\xFD\xFD"));
    return context.size() != source.size() && std::count(context.begin(), context.end(), '#') >= 2;
}

Key take_apart(std::wstring_view key) {
    const std::size_t end = key.find(kContextEnd);
    if (end == key.npos) return {{}, key};
    const std::size_t text = end + kContextEnd.size();
    return {key.substr(0, text), key.substr(text)};
}

} // namespace tool
