#include "supp/dialog_layout.h"

#include "core/name_hash.h"
#include "param/tree_walk.h"
#include "qzref.h"
#include "qzstring.h"
#include "qzvariant.h"
#include "supp/translate.h"
#include "supp/translation_context.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace qzr {

namespace {

constexpr char kSection[] = "Dialogs";
constexpr char kRectangles[] = "Dialog Size";
constexpr char kKeyEnd[] = "\xFD\xFD"; // the end of every resource context, in code page 1251

// Sections may be named without the two bytes, which few editors can write.
unsigned key_of_section(const char* name) {
    CXString key(name);
    const unsigned size = key.GetSize();
    if (size < 2 || std::memcmp(key.GetData() + size - 2, kKeyEnd, 2) != 0) key = key + kKeyEnd;
    return hash_name_folded(key.GetData());
}

unsigned key_of_dialog(const wchar_t* module, const wchar_t* id) {
    CXStringW name;
    if (IS_INTRESOURCE(id)) {
        name.Format(L"#%u", static_cast<unsigned>(reinterpret_cast<ULONG_PTR>(id)));
    } else {
        name = CXStringW(L"#") + id;
    }
    CXString key;
    key.Format("%s#%d%s%s", CXString(module).GetData(), static_cast<int>(ResourceKind::dialog),
               CXString(name.GetData()).GetData(), kKeyEnd);
    return hash_name_folded(key.GetData());
}

// Four numbers with commas between them; what is missing counts as 0.
RECT rect_of_text(const char* text) {
    LONG edges[4] = {};
    for (LONG& edge : edges) {
        edge = std::atoi(text);
        const char* const comma = std::strchr(text, ',');
        if (comma == nullptr) break;
        text = comma + 1;
    }
    return {edges[0], edges[1], edges[2], edges[3]};
}

RECT rect_of(const tagQZVARIANT& value) {
    if (value.vt == QZVT_RECT) return value.rectVal;
    if (value.vt == QZVT_TEXT && value.pszVal != nullptr) return rect_of_text(value.pszVal);
    return {};
}

bool is_usable(const RECT& rect) {
    const auto fits = [](long long n) { return n >= SHRT_MIN && n <= SHRT_MAX; };
    return rect.right > rect.left && rect.bottom > rect.top && fits(rect.left) && fits(rect.top) &&
           fits(1LL * rect.right - rect.left) && fits(1LL * rect.bottom - rect.top);
}

} // namespace

DialogLayout::~DialogLayout() { rects_.take_all(block_delete<ItemRect>); }

const RECT* DialogLayout::find(unsigned item) const noexcept {
    const ItemRect* const found = rects_.find(item);
    return found != nullptr ? &found->rect : nullptr;
}

void DialogLayout::add(unsigned item, const RECT& rect) {
    if (rects_.find(item) != nullptr) return;
    BlockPtr<ItemRect> added(block_new<ItemRect>());
    added->rect = rect;
    rects_.insert(added.get(), item);
    static_cast<void>(added.release());
}

DialogLayouts::~DialogLayouts() { dialogs_.take_all(block_delete<DialogLayout>); }

DialogLayout& DialogLayouts::make(unsigned key) {
    if (DialogLayout* const known = dialogs_.find(key)) return *known;
    BlockPtr<DialogLayout> added(block_new<DialogLayout>());
    dialogs_.insert(added.get(), key);
    return *added.release();
}

void DialogLayouts::add(IParam& companion) {
    const auto section = CQZRef<IParam>::Adopt(companion.OpenSubParam(kSection, 0));
    if (!section) return;
    const NameEnum names = enum_children(*section);
    while (const char* const name = next_name(names)) {
        const auto dialog = CQZRef<IParam>::Adopt(section->OpenSubParam(name, 0));
        const auto rects = CQZRef<IParam>::Adopt(dialog ? dialog->OpenSubParam(kRectangles, 0) : nullptr);
        if (!rects) continue;
        DialogLayout& layout = make(key_of_section(name));
        for_each_value(*rects, [&](const char* item, const tagQZVARIANT& value) {
            const RECT rect = rect_of(value);
            if (is_usable(rect)) layout.add(static_cast<unsigned>(std::atoi(item)), rect);
        });
    }
}

const DialogLayout* DialogLayouts::find(const wchar_t* module, const wchar_t* id) const {
    return dialogs_.size() != 0 ? dialogs_.find(key_of_dialog(module, id)) : nullptr;
}

const DialogLayout* find_dialog_layout(const wchar_t* module, const wchar_t* id) {
    return translation().dialogs.find(module, id);
}

} // namespace qzr
