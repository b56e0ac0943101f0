// Walking a menu and its sub-menus.
#pragma once

#include "core/windows_lean.h"

#include <functional>

namespace qzr {

// The text that an item is to have instead of its own; it may be that very text, and must not be null.
using ItemText = std::function<const wchar_t*(const wchar_t* text)>;

// Longest item text, with its zero, that a walk reads.
inline constexpr unsigned kMostItemUnits = 512;

// Writes each item that has a text back, keeping its command or sub-menu and its grayed and checked states
// and nothing else, and goes on into its sub-menu: 64 levels at most, each menu once. Texts are cut to
// `units` with their zero, at most kMostItemUnits.
void rewrite_menu(HMENU menu, unsigned units, const ItemText& new_text);

} // namespace qzr
