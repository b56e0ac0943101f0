// Texts of the library as texts of the standard library.
#include "qztext.h"

#include "expect.h"

#include <filesystem>

namespace {

std::string given(qz::TextArg text) { return text.str(); }
std::wstring given_wide(qz::WideTextArg text) { return text.str(); }

template <class Text>
bool is_refused(Text text) {
    try {
        qz::string_of(text);
        return false;
    } catch (const std::invalid_argument&) {
        return true;
    }
}

void use_arguments() {
    using namespace std::string_literals;
    expect(given("a") == "a" && given("a"s) == "a" && given(CXString("a")) == "a",
           "names come in every form");
    expect(given(nullptr).empty() && given_wide(nullptr).empty(), "null is the empty text");
    expect(given_wide(CXStringW(L"a")) == L"a" && given_wide(std::filesystem::path(L"b") / L"c") == L"b\\c",
           "and paths do");
    expect(qz::view(CXString("ab")) == "ab" && qz::view(CXStringW(L"ab")) == L"ab",
           "texts are seen in place");
    expect(qz::string_of(std::string_view("abc").substr(1)) == "bc", "views become texts of the library");
    expect(is_refused(std::string_view("a\0b", 3)) && is_refused(std::wstring_view(L"a\0b", 3)),
           "a zero is not cut at");
}

void use_utf8() {
    const struct {
        const wchar_t* wide;
        const char* utf8;
    } same[] = {
        {L"", ""},
        {L"az\x7F", "az\x7F"},
        {L"\x80\x7FF", "\xC2\x80\xDF\xBF"},
        {L"\x800\xD7FF\xE000\xFFFF", "\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"},
        {L"\xD800\xDC00\xDBFF\xDFFF", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
    };
    for (const auto& row : same) {
        expect(qz::utf8(std::wstring_view(row.wide)) == row.utf8, row.utf8);
        expect(qz::wide(row.utf8) == row.wide, row.utf8);
    }
    expect(qz::utf8(CXStringW(L"\xE9")) == "\xC3\xA9" && qz::utf8(CXString("e")) == "e" &&
               qz::utf8("e") == "e" && qz::utf8(L"\xE9") == "\xC3\xA9",
           "strings as UTF-8");
    for (const wchar_t* half : {L"\xD800", L"\xDC00", L"\xDFFF"})
        expect(qz::utf8(std::wstring_view(half)) == "\xEF\xBF\xBD", "half a pair is replaced");
    expect(qz::utf8(std::wstring_view(L"\xDC00\xD800")) == "\xEF\xBF\xBD\xEF\xBF\xBD",
           "so is a pair turned round");

    const struct {
        const char* bytes;
        const wchar_t* wide;
    } damaged[] = {
        {"\x80", L"\xFFFD"},                               // goes on with nothing
        {"\xC3", L"\xFFFD"},                               // ends early
        {"\xE2\x82", L"\xFFFD\xFFFD"},                     // ends early
        {"\xC3(", L"\xFFFD("},                             // does not go on
        {"\xC0\x80", L"\xFFFD\xFFFD"},                     // longer than needed
        {"\xE0\x9F\xBF", L"\xFFFD\xFFFD\xFFFD"},           // longer than needed
        {"\xED\xA0\x80", L"\xFFFD\xFFFD\xFFFD"},           // half a surrogate pair
        {"\xF4\x90\x80\x80", L"\xFFFD\xFFFD\xFFFD\xFFFD"}, // too large
        {"\xFF"
         "a",
         L"\xFFFD"
         L"a"}, // no byte of UTF-8
    };
    for (const auto& row : damaged)
        expect(qz::wide(row.bytes) == row.wide, "what is no UTF-8 is replaced, byte by byte");
}

} // namespace

void use_texts() {
    use_arguments();
    use_utf8();
}
