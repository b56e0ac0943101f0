// Sizes of dialogs, from the companion files of dictionaries. docs/dictionaries.md describes those files.
#pragma once

#include "core/hash_map.h"
#include "core/windows_lean.h"
#include "qzparam.h"

namespace qzr {

// Rectangles are in dialog units, as in templates: not empty, edges and extents fit into 16 bits.
struct ItemRect : HashLink {
    RECT rect = {};
};

// The rectangles of one dialog's items by their identifiers. Item 0 is the dialog itself: only its extent is
// meant.
class DialogLayout : public HashLink {
public:
    DialogLayout() noexcept = default;
    ~DialogLayout();

    const RECT* find(unsigned item) const noexcept;
    void add(unsigned item, const RECT& rect); // the first for an item stays. Throws CXMemException.

private:
    HashMap<ItemRect, 127> rects_;
};

// All dialogs, by a number made from their key.
class DialogLayouts {
public:
    DialogLayouts() noexcept = default;
    ~DialogLayouts();

    // Takes over a companion file; what is there already stays. Values that are no rectangles are left out.
    // Throws CXMemException.
    void add(IParam& companion);

    // module is the file name of the module that the dialog comes from, id the name of the template or
    // MAKEINTRESOURCE. Null when no file knows the dialog. Throws CXMemException.
    const DialogLayout* find(const wchar_t* module, const wchar_t* id) const;

private:
    DialogLayout& make(unsigned key);

    HashMap<DialogLayout, 127> dialogs_;
};

const DialogLayout* find_dialog_layout(const wchar_t* module, const wchar_t* id); // in those of the process

} // namespace qzr
