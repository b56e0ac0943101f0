// Dialog templates of modules, and their translation.
#pragma once

#include "core/allocator.h"
#include "core/windows_lean.h"
#include "supp/dialog_copy.h"
#include "supp/wide_hash.h"

#include <string>

namespace qzr {

// Which resource of which module a template is. Holds its texts itself, unlike CXStringW, so that copies may
// be used in other threads.
class DialogSource {
public:
    DialogSource(HINSTANCE module, const char* id);
    DialogSource(HINSTANCE module, const wchar_t* id);

    const wchar_t* file() const noexcept {
        return file_.c_str();
    } // the module's file name, without its folder
    const wchar_t* id() const noexcept { return name_.empty() ? number_ : name_.c_str(); }
    const WideHash& context() const noexcept { return context_; } // of the dialog's texts

private:
    using Text = std::basic_string<wchar_t, std::char_traits<wchar_t>, HeapAllocator<wchar_t>>;

    void set_id(const wchar_t* id);

    Text file_;
    Text name_;
    const wchar_t* number_ = nullptr; // MAKEINTRESOURCE, when there is no name
    WideHash context_;
};

// A template in memory; at most `size` bytes of it can be read.
struct DialogBytes {
    const void* data = nullptr;
    std::size_t size = 0;
};
DialogBytes dialog_bytes(const void* dialog_template) noexcept;

// Of a resource, null when it cannot be loaded. `known` are bytes that were found readable since it was
// found.
DialogBytes dialog_bytes(HMODULE module, HRSRC resource, const DialogBytes& known = {}) noexcept;

bool same_bytes(const DialogBytes& a, const DialogBytes& b) noexcept;

// Copies a template with its texts translated, in the context of its source if there is one, and with the
// places that are kept for the dialog. @return false when the template is damaged or memory is missing.
bool translate_dialog(const DialogBytes& bytes, const DialogSource* source, DialogCopy& copy) noexcept;

} // namespace qzr
