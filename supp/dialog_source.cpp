#include "supp/dialog_source.h"

#include "core/readable_memory.h"
#include "supp/dialog_layout.h"
#include "supp/dialog_template.h"
#include "supp/hook_state.h"
#include "supp/resource_context.h"

namespace qzr {

DialogSource::DialogSource(HINSTANCE module, const wchar_t* id)
    : file_(module_file_name(module).GetData()), number_(id) {
    if (!IS_INTRESOURCE(id)) name_ = id;
}

DialogBytes dialog_bytes(HMODULE module, HRSRC resource) noexcept {
    HGLOBAL const loaded = unhooked(Hook::load_resource, ::LoadResource)(module, resource);
    if (loaded == nullptr) return {};
    const void* const data = unhooked(Hook::lock_resource, ::LockResource)(loaded);
    const DWORD size = unhooked(Hook::sizeof_resource, ::SizeofResource)(module, resource);
    return {data, readable_bytes(data, size)};
}

DialogBytes dialog_bytes(const void* dialog_template) noexcept {
    return {dialog_template, readable_bytes(dialog_template, kLongestDialogTemplate)};
}

namespace {

bool translate_with(const DialogBytes& bytes, const WideHash& context, const DialogLayout* layout,
                    Vector<std::byte>& copy) {
    DialogChanges changes;
    changes.text = [&context](const wchar_t* text) { return translate(text, context); };
    if (layout != nullptr) changes.place = [layout](unsigned item) { return layout->find(item); };
    return translate_dialog_template(bytes.data, bytes.size, changes, copy);
}

} // namespace

bool translate_dialog(const DialogBytes& bytes, const DialogSource* source,
                      Vector<std::byte>& copy) noexcept {
    try {
        if (source == nullptr) return translate_with(bytes, {}, nullptr, copy);
        return translate_with(bytes, resource_context(source->file(), ResourceKind::dialog, source->id()),
                              find_dialog_layout(source->file(), source->id()), copy);
    } catch (...) {
        return false;
    }
}

} // namespace qzr
