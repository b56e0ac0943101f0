#include "supp/hook_table.h"

namespace qzr {

namespace {

template <class Function>
HookRow row(const char* exporter, const char* function, Function* replacement) {
    return {exporter, function, reinterpret_cast<void*>(replacement)};
}

constexpr char kUser[] = "USER32.DLL";
constexpr char kKernel[] = "KERNEL32.DLL";

} // namespace

std::array<HookRow, kHooks> hook_rows() {
    return {
        row(kUser, "LoadStringA", hooked::load_string_a),
        row(kUser, "LoadStringW", hooked::load_string_w),
        row(kUser, "LoadMenuIndirectA", hooked::load_menu_indirect_a),
        row(kUser, "LoadMenuA", hooked::load_menu_a),
        row(kUser, "LoadMenuW", hooked::load_menu_w),
        row(kKernel, "LoadResource", hooked::load_resource),
        row(kKernel, "FindResourceA", hooked::find_resource_a),
        row(kKernel, "FindResourceExA", hooked::find_resource_ex_a),
        row(kKernel, "FindResourceW", hooked::find_resource_w),
        row(kKernel, "FindResourceExW", hooked::find_resource_ex_w),
        row(kKernel, "LockResource", hooked::lock_resource),
        row(kKernel, "FreeResource", hooked::free_resource),
        row(kKernel, "SizeofResource", hooked::sizeof_resource),
        row(kUser, "CreateDialogParamA", hooked::create_dialog_param_a),
        row(kUser, "CreateDialogParamW", hooked::create_dialog_param_w),
        row(kUser, "DialogBoxParamA", hooked::dialog_box_param_a),
        row(kUser, "DialogBoxParamW", hooked::dialog_box_param_w),
        row(kUser, "DialogBoxParamA", hooked::dialog_box_param_a),
        row(kUser, "DialogBoxParamW", hooked::dialog_box_param_w),
        row(kUser, "MessageBoxIndirectA", hooked::message_box_indirect_a),
        row(kUser, "MessageBoxA", hooked::message_box_a),
        row(kUser, "MessageBoxExA", hooked::message_box_ex_a),
        row(kUser, "DialogBoxIndirectParamA", hooked::dialog_box_indirect_param_a),
        row(kUser, "DialogBoxIndirectParamW", hooked::dialog_box_indirect_param_w),
        row(kUser, "CreateDialogIndirectParamA", hooked::create_dialog_indirect_param_a),
        row(kUser, "CreateDialogIndirectParamW", hooked::create_dialog_indirect_param_w),
    };
}

} // namespace qzr
