// Finding, loading and locking resources: dialog templates are served translated.
#include "supp/hook_state.h"
#include "supp/translate.h"

#include <algorithm>
#include <cstdlib>
#include <cwchar>

namespace qzr {

namespace {

constexpr unsigned kDialogType = 5; // RT_DIALOG

// A type is a number, or a text that may spell one.
bool is_dialog_type(const wchar_t* type) {
    if (IS_INTRESOURCE(type)) return reinterpret_cast<ULONG_PTR>(type) == kDialogType;
    return type[0] == L'#' && std::wcstoul(type + 1, nullptr, 10) == kDialogType;
}
bool is_dialog_type(const char* type) {
    if (IS_INTRESOURCE(type)) return reinterpret_cast<ULONG_PTR>(type) == kDialogType;
    return type[0] == '#' && std::strtoul(type + 1, nullptr, 10) == kDialogType;
}

// Also before there is a dictionary: it may come before the resource is loaded.
template <class Unit>
HRSRC noted(HRSRC resource, HMODULE module, const Unit* type, const Unit* name) noexcept {
    if (resource == nullptr || !translation_enabled()) return resource;
    try {
        if (is_dialog_type(type)) hooks().templates.note(resource, DialogSource(module, name));
    } catch (...) {
        // Then it is served as it is.
    }
    return resource;
}

// The copy to serve; nothing for other resources, and for templates in which nothing changes.
DialogBytes served(HMODULE module, HRSRC resource) noexcept {
    if (resource == nullptr || !translating()) return {};
    try {
        const ServedTemplates::Note note = hooks().templates.find(resource);
        if (note.source == nullptr) return {};
        const DialogBytes original = dialog_bytes(module, resource, note.original);
        DialogCopy copy;
        if (original.data == nullptr || !translate_dialog(original, note.source.get(), copy)) return {};
        const DialogBytes same_length = {original.data, std::min(original.size, copy.size())};
        if (same_bytes({copy.data(), copy.size()}, same_length)) return {};
        return hooks().templates.keep(resource, original, copy);
    } catch (...) {
        return {};
    }
}

HGLOBAL handle_of(const DialogBytes& copy) { return const_cast<void*>(copy.data); }

} // namespace

HRSRC WINAPI hooked::find_resource_a(HMODULE module, LPCSTR name, LPCSTR type) {
    return noted(unhooked(Hook::find_resource_a, ::FindResourceA)(module, name, type), module, type, name);
}

HRSRC WINAPI hooked::find_resource_w(HMODULE module, LPCWSTR name, LPCWSTR type) {
    return noted(unhooked(Hook::find_resource_w, ::FindResourceW)(module, name, type), module, type, name);
}

HRSRC WINAPI hooked::find_resource_ex_a(HMODULE module, LPCSTR type, LPCSTR name, WORD language) {
    auto* const find = unhooked(Hook::find_resource_ex_a, ::FindResourceExA);
    return noted(find(module, type, name, language), module, type, name);
}

HRSRC WINAPI hooked::find_resource_ex_w(HMODULE module, LPCWSTR type, LPCWSTR name, WORD language) {
    auto* const find = unhooked(Hook::find_resource_ex_w, ::FindResourceExW);
    return noted(find(module, type, name, language), module, type, name);
}

HGLOBAL WINAPI hooked::load_resource(HMODULE module, HRSRC resource) {
    const DialogBytes copy = served(module, resource);
    if (copy.data != nullptr) return handle_of(copy);
    return unhooked(Hook::load_resource, ::LoadResource)(module, resource);
}

DWORD WINAPI hooked::sizeof_resource(HMODULE module, HRSRC resource) {
    const DialogBytes copy = served(module, resource);
    if (copy.data != nullptr) return static_cast<DWORD>(copy.size);
    return unhooked(Hook::sizeof_resource, ::SizeofResource)(module, resource);
}

LPVOID WINAPI hooked::lock_resource(HGLOBAL loaded) {
    if (hooks().templates.holds(loaded)) return loaded;
    return unhooked(Hook::lock_resource, ::LockResource)(loaded);
}

// The answer for success is 0, and nothing is freed; just as the system does it.
WINBOOL WINAPI hooked::free_resource(HGLOBAL loaded) {
    if (hooks().templates.holds(loaded)) return FALSE;
    return unhooked(Hook::free_resource, ::FreeResource)(loaded);
}

} // namespace qzr
