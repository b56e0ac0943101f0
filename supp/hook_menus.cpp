// Loading menus. They hold wide text however they were loaded, so their contexts are the wide ones.
#include "supp/hook_state.h"
#include "supp/menu_walk.h"
#include "supp/resource_context.h"

namespace qzr {

namespace {

HMENU translate_items(HMENU menu, const WideHash& context) {
    rewrite_menu(menu, kMostItemUnits, [&](const wchar_t* text) { return translate(text, context); });
    return menu;
}

bool wanted(HMENU menu) { return menu != nullptr && translating() && !dictionary_is_empty(); }

HMENU translate_named(HMENU menu, HINSTANCE module, const wchar_t* name) {
    return translate_items(menu, resource_context(module, ResourceKind::menu, name));
}

} // namespace

HMENU WINAPI hooked::load_menu_a(HINSTANCE module, LPCSTR name) {
    HMENU const menu = unhooked(Hook::load_menu_a, ::LoadMenuA)(module, name);
    if (!wanted(menu)) return menu;
    try {
        CXStringW text;
        return translate_named(menu, module, wide_resource_name(name, text));
    } catch (...) {
        return menu;
    }
}

HMENU WINAPI hooked::load_menu_w(HINSTANCE module, LPCWSTR name) {
    HMENU const menu = unhooked(Hook::load_menu_w, ::LoadMenuW)(module, name);
    if (!wanted(menu)) return menu;
    try {
        return translate_named(menu, module, name);
    } catch (...) {
        return menu;
    }
}

// A menu from memory has no name, so no context.
HMENU WINAPI hooked::load_menu_indirect_a(const MENUTEMPLATEA* menu_template) {
    HMENU const menu = unhooked(Hook::load_menu_indirect_a, ::LoadMenuIndirectA)(menu_template);
    if (!wanted(menu)) return menu;
    try {
        return translate_items(menu, {});
    } catch (...) {
        return menu;
    }
}

} // namespace qzr
