#include "storage/element_names.h"

#include "system/encoding.h"
#include "system/failure.h"

#include <algorithm>
#include <cwctype>
#include <iterator>

namespace tool {

namespace {

constexpr std::wstring_view kReserved = L"\"*/:<>?\\|%\x7F";
constexpr wchar_t kDigits[] = L"0123456789ABCDEF";

bool must_be_escaped(wchar_t c) { return c < 0x20 || kReserved.find(c) != kReserved.npos; }

void append_escape(std::wstring& out, wchar_t c) {
    out += L'%';
    out += kDigits[(c >> 4) & 15];
    out += kDigits[c & 15];
}

/// Devices have their names in every folder, with any extension.
bool is_device(std::wstring_view name) {
    static constexpr std::wstring_view kDevices[] = {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"};
    static constexpr std::wstring_view kNumbered[] = {L"COM", L"LPT"};
    std::wstring base(name.substr(0, name.find(L'.')));
    base.resize(base.find_last_not_of(L' ') + 1);
    std::transform(base.begin(), base.end(), base.begin(),
                   [](wchar_t c) { return c < 0x80 ? static_cast<wchar_t>(std::towupper(c)) : c; });
    if (std::find(std::begin(kDevices), std::end(kDevices), base) != std::end(kDevices)) return true;
    const bool numbered = base.size() == 4 && std::wstring_view(L"0123456789\xB9\xB2\xB3").find(base[3]) !=
                                                  std::wstring_view::npos;
    return numbered &&
           std::find(std::begin(kNumbered), std::end(kNumbered), base.substr(0, 3)) != std::end(kNumbered);
}

/// @return 16 for a character that is no digit
std::size_t digit(wchar_t c) {
    return std::min<std::size_t>(std::wstring_view(kDigits, 16).find(static_cast<wchar_t>(std::towupper(c))),
                                 16);
}

} // namespace

std::wstring file_name_of(const CXString& name) {
    const CXStringW converted(name.GetData());
    const std::wstring_view wide = converted.GetData();
    if (wide.empty()) return L"%";
    std::wstring text;
    for (std::size_t i = 0; i < wide.size(); ++i) {
        const bool first_of_device = i == 0 && is_device(wide);
        const bool at_end = i + 1 == wide.size();
        const bool vanishes = at_end && (wide[i] == L'.' || wide[i] == L' ');
        if (first_of_device || vanishes || must_be_escaped(wide[i])) {
            append_escape(text, wide[i]);
        } else {
            text += wide[i];
        }
    }
    return text;
}

CXString element_name(const std::wstring& text) {
    std::wstring name;
    if (text == L"%") return CXString();
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != L'%') {
            name += text[i];
            continue;
        }
        const std::size_t high = i + 2 < text.size() ? digit(text[i + 1]) : 16;
        const std::size_t low = i + 2 < text.size() ? digit(text[i + 2]) : 16;
        if (high == 16 || low == 16 || high + low == 0)
            fail("\"" + printable(utf8(text)) + "\": behind \"%\" two hexadecimal digits are needed");
        name += static_cast<wchar_t>(high * 16 + low);
        i += 2;
    }
    return narrow(name, "the name");
}

std::string element_text(const ElementNames& path) {
    std::string text;
    for (const CXString& name : path) {
        if (!text.empty()) text += '/';
        text += utf8(file_name_of(name));
    }
    return text;
}

ElementPath element_path(const std::wstring& text) {
    ElementPath path = {{}, text.empty()};
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find_first_of(L"/\\", start), text.size());
        if (end > start) path.names.push_back(element_name(text.substr(start, end - start)));
        path.ends_in_separator = end < text.size() && end + 1 == text.size();
        start = end + 1;
    }
    return path;
}

} // namespace tool
