#include "supp/dialog_source.h"

#include "core/readable_memory.h"
#include "supp/dialog_layout.h"
#include "supp/dialog_template.h"
#include "supp/hook_state.h"
#include "supp/resource_context.h"

#include <cstring>

#include <emmintrin.h>

namespace qzr {

DialogSource::DialogSource(HINSTANCE module, const char* id) : file_(module_file_name(module).GetData()) {
    CXStringW text;
    set_id(wide_resource_name(id, text));
}

DialogSource::DialogSource(HINSTANCE module, const wchar_t* id) : file_(module_file_name(module).GetData()) {
    set_id(id);
}

void DialogSource::set_id(const wchar_t* id) {
    number_ = id;
    if (!IS_INTRESOURCE(id)) name_ = id;
    context_ = resource_context(file(), ResourceKind::dialog, id);
}

// The memory of an image is asked for once: as long as the resource loads, its image is there.
DialogBytes dialog_bytes(HMODULE module, HRSRC resource, const DialogBytes& known) noexcept {
    HGLOBAL const loaded = unhooked(Hook::load_resource, ::LoadResource)(module, resource);
    if (loaded == nullptr) return {};
    const void* const data = unhooked(Hook::lock_resource, ::LockResource)(loaded);
    const DWORD size = unhooked(Hook::sizeof_resource, ::SizeofResource)(module, resource);
    if (data == known.data && size <= known.size) return {data, size};
    return {data, readable_bytes(data, size)};
}

DialogBytes dialog_bytes(const void* dialog_template) noexcept {
    return {dialog_template, readable_bytes(dialog_template, kLongestDialogTemplate)};
}

// 64 bytes a step; the runtime compares byte by byte.
bool same_bytes(const DialogBytes& a, const DialogBytes& b) noexcept {
    if (a.size != b.size) return false;
    const auto* of_a = static_cast<const __m128i*>(a.data);
    const auto* of_b = static_cast<const __m128i*>(b.data);
    const auto same = [&](unsigned i) {
        return _mm_cmpeq_epi8(_mm_loadu_si128(of_a + i), _mm_loadu_si128(of_b + i));
    };
    std::size_t left = a.size;
    for (; left >= 4 * sizeof(__m128i); left -= 4 * sizeof(__m128i), of_a += 4, of_b += 4) {
        const __m128i all = _mm_and_si128(_mm_and_si128(same(0), same(1)), _mm_and_si128(same(2), same(3)));
        if (_mm_movemask_epi8(all) != 0xFFFF) return false;
    }
    return std::memcmp(of_a, of_b, left) == 0;
}

namespace {

bool translate_with(const DialogBytes& bytes, const WideHash& context, const DialogLayout* layout,
                    DialogCopy& copy) {
    DialogChanges changes;
    changes.text = [&context](const wchar_t* text) { return translate(text, context); };
    if (layout != nullptr) changes.place = [layout](unsigned item) { return layout->find(item); };
    return translate_dialog_template(bytes.data, bytes.size, changes, copy);
}

} // namespace

bool translate_dialog(const DialogBytes& bytes, const DialogSource* source, DialogCopy& copy) noexcept {
    try {
        if (source == nullptr) return translate_with(bytes, {}, nullptr, copy);
        return translate_with(bytes, source->context(), find_dialog_layout(source->file(), source->id()),
                              copy);
    } catch (...) {
        return false;
    }
}

} // namespace qzr
