// Loading strings.
#include "string/scan.h"
#include "supp/hook_state.h"
#include "supp/resource_context.h"

#include <algorithm>
#include <cstring>

namespace qzr {

namespace {

// Fills the whole buffer, with zeroes behind the text.
template <class Unit>
void copy(Unit* to, std::size_t size, const Unit* from, std::size_t length) {
    const std::size_t copied = std::min(size, length);
    std::memcpy(to, from, copied * sizeof(Unit));
    std::memset(to + copied, 0, (size - copied) * sizeof(Unit));
}

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
    if (!translating() || size <= 0) return loaded; // a size of 0 asks for a pointer
    if (loaded <= 0 || buffer[0] == 0) return 0;
    try {
        const Unit* const translated = translation_of(module, id, buffer);
        if (translated == buffer) return loaded;
        const std::size_t length = text_length(translated);
        const auto room = static_cast<std::size_t>(size);
        if (std::memcmp(translated, buffer, std::min(length + 1, room) * sizeof(Unit)) == 0) return loaded;
        copy(buffer, room, translated, length);
        return static_cast<int>(length);
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
