// Loading strings.
#include "supp/hook_state.h"
#include "supp/resource_context.h"

#include <cstring>
#include <cwchar>

namespace qzr {

namespace {

std::size_t length(const char* text) { return std::strlen(text); }
std::size_t length(const wchar_t* text) { return std::wcslen(text); }
bool same(const char* a, const char* b) { return std::strcmp(a, b) == 0; }
bool same(const wchar_t* a, const wchar_t* b) { return std::wcscmp(a, b) == 0; }
void copy(char* to, const char* from, std::size_t size) { std::strncpy(to, from, size); }
void copy(wchar_t* to, const wchar_t* from, std::size_t size) { std::wcsncpy(to, from, size); }

// Strings are kept in blocks of 16; the context names the block.
template <class Unit>
const Unit* block_of(unsigned id) {
    constexpr unsigned kBlock = 16;
    return reinterpret_cast<const Unit*>(static_cast<ULONG_PTR>(id / kBlock + 1));
}

const wchar_t* translate_in(const wchar_t* text, const WideHash& context) { return translate(text, context); }
const char* translate_in(const char* text, const CXString& context) {
    return translate(text, context.GetData());
}

template <class Unit>
const Unit* translation_of(HINSTANCE module, unsigned id, const Unit* text) {
    constexpr unsigned kIds = 0x10000;
    if (id >= kIds) return translate(text);
    return translate_in(text, resource_context(module, ResourceKind::string_table, block_of<Unit>(id)));
}

// Translates what was loaded into the buffer. A translation that does not fit is cut, without a zero then;
// callers rely on being told its whole length.
template <class Unit>
int translate_loaded(HINSTANCE module, unsigned id, Unit* buffer, int size, int loaded) {
    if (!translation_enabled() || size <= 0) return loaded; // a size of 0 asks for a pointer
    if (loaded <= 0 || buffer[0] == 0) return 0;
    if (dictionary_is_empty()) return loaded;
    try {
        const Unit* const translated = translation_of(module, id, buffer);
        if (translated == buffer || same(translated, buffer)) return loaded;
        copy(buffer, translated, static_cast<std::size_t>(size));
        return static_cast<int>(length(translated));
    } catch (...) {
        return loaded;
    }
}

} // namespace

int WINAPI hooked::load_string_a(HINSTANCE module, UINT id, LPSTR buffer, int size) {
    const int loaded = unhooked(Hook::load_string_a, ::LoadStringA)(module, id, buffer, size);
    return translate_loaded(module, id, buffer, size, loaded);
}

int WINAPI hooked::load_string_w(HINSTANCE module, UINT id, LPWSTR buffer, int size) {
    const int loaded = unhooked(Hook::load_string_w, ::LoadStringW)(module, id, buffer, size);
    return translate_loaded(module, id, buffer, size, loaded);
}

} // namespace qzr
