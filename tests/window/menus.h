// Menus as texts.
#pragma once

#include <string>

#include <windows.h>

inline std::wstring describe_item(HMENU menu, int i) {
    wchar_t text[600] = L"";
    const auto position = static_cast<UINT>(i);
    MENUITEMINFOW info = {};
    info.cbSize = sizeof info;
    info.fMask = MIIM_STATE | MIIM_ID | MIIM_FTYPE;
    GetMenuItemInfoW(menu, position, TRUE, &info);
    const int length = GetMenuStringW(menu, position, text, 600, MF_BYPOSITION);
    if ((info.fType & MFT_SEPARATOR) != 0) return L"line";
    std::wstring line = length < 50 ? std::wstring(text) : std::to_wstring(length) + L" units";
    if (GetSubMenu(menu, i) == nullptr) line += L" #" + std::to_wstring(info.wID);
    const struct {
        bool set;
        const wchar_t* name;
    } marks[] = {
        {(info.fState & MFS_CHECKED) != 0, L" checked"},    {(info.fState & MF_GRAYED) != 0, L" grayed"},
        {(info.fState & MF_DISABLED) != 0, L" disabled"},   {(info.fState & MFS_DEFAULT) != 0, L" default"},
        {(info.fType & MFT_OWNERDRAW) != 0, L" ownerdraw"}, {(info.fType & MFT_RADIOCHECK) != 0, L" radio"},
    };
    for (const auto& mark : marks)
        if (mark.set) line += mark.name;
    return line;
}

// The items of a menu: "Open #7 checked", "line", and sub-menus in parentheses, each with a bar behind it.
inline std::wstring describe(HMENU menu, int depth = 0) {
    std::wstring all;
    for (int i = 0; depth < 5 && i < GetMenuItemCount(menu); ++i) {
        all += describe_item(menu, i);
        if (HMENU const sub = GetSubMenu(menu, i)) all += L" (" + describe(sub, depth + 1) + L")";
        all += L"|";
    }
    return all;
}
