#include "supp/menu_walk.h"

#include "core/allocator.h"

#include <algorithm>

namespace qzr {

namespace {

constexpr unsigned kMostLevels = 64;

struct MenuAtLevel {
    HMENU menu;
    unsigned level; // 0 for the outermost
};

// The menus that are left to do, and those done: the system lets a menu hang in several places, even in
// itself.
class MenuList {
public:
    void add(MenuAtLevel found) {
        const auto is_same = [&](const MenuAtLevel& known) { return known.menu == found.menu; };
        if (found.level < kMostLevels && std::none_of(menus_.begin(), menus_.end(), is_same))
            menus_.push_back(found);
    }
    const MenuAtLevel* next() { return done_ < menus_.size() ? &menus_[done_++] : nullptr; }

private:
    Vector<MenuAtLevel> menus_;
    std::size_t done_ = 0;
};

struct Item {
    HMENU menu;
    UINT position;
};

void write_item(const Item& item, UINT state, HMENU sub_menu, const wchar_t* text) {
    const UINT kept = MF_BYPOSITION | (state & (MF_GRAYED | MF_CHECKED));
    if (sub_menu != nullptr) {
        ModifyMenuW(item.menu, item.position, kept | MF_POPUP, reinterpret_cast<UINT_PTR>(sub_menu), text);
        return;
    }
    const UINT command = GetMenuItemID(item.menu, static_cast<int>(item.position));
    if ((state & MF_POPUP) == 0 && command != 0)
        ModifyMenuW(item.menu, item.position, kept | MF_STRING, command, text);
}

} // namespace

void rewrite_menu(HMENU menu, unsigned units, const ItemText& new_text) {
    wchar_t text[kMostItemUnits];
    const int room = static_cast<int>(std::min(units, kMostItemUnits));
    MenuList menus;
    menus.add({menu, 0});
    while (const MenuAtLevel* const next = menus.next()) {
        const MenuAtLevel current = *next;
        const int items = GetMenuItemCount(current.menu);
        for (int i = 0; i < items; ++i) {
            const Item item{current.menu, static_cast<UINT>(i)};
            if (GetMenuStringW(item.menu, item.position, text, room, MF_BYPOSITION) <= 0) continue;
            HMENU const sub_menu = GetSubMenu(item.menu, i);
            write_item(item, GetMenuState(item.menu, item.position, MF_BYPOSITION), sub_menu, new_text(text));
            if (sub_menu != nullptr) menus.add({sub_menu, current.level + 1});
        }
    }
}

} // namespace qzr
