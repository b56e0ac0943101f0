// The replaced functions: what they are called, what replaces them, and how the replacements call them.
#pragma once

#include "core/windows_lean.h"

#include <array>
#include <atomic>
#include <cstddef>

namespace qzr {

// In the order in which they are installed. The two dialog functions that come a second time find nothing
// left to patch then; their address is saved once more.
enum class Hook : unsigned {
    load_string_a,
    load_string_w,
    load_menu_indirect_a,
    load_menu_a,
    load_menu_w,
    load_resource,
    find_resource_a,
    find_resource_ex_a,
    find_resource_w,
    find_resource_ex_w,
    lock_resource,
    free_resource,
    sizeof_resource,
    create_dialog_param_a,
    create_dialog_param_w,
    dialog_box_param_a,
    dialog_box_param_w,
    dialog_box_param_a_again,
    dialog_box_param_w_again,
    message_box_indirect_a,
    message_box_a,
    message_box_ex_a,
    dialog_box_indirect_param_a,
    dialog_box_indirect_param_w,
    create_dialog_indirect_param_a,
    create_dialog_indirect_param_w,
};
inline constexpr unsigned kHooks = 26;

struct HookRow {
    const char* exporter;
    const char* function;
    void* replacement;
};
std::array<HookRow, kHooks> hook_rows();

// Where the replaced functions were found, at the last installation.
class UnhookedFunctions {
public:
    void set(unsigned hook, void* function) noexcept { found_[hook].store(function); }

    // The one that was saved, or the system's when none was: another installation may have failed since.
    template <class Function>
    Function* get(Hook hook, Function* system) const noexcept {
        void* const found = found_[static_cast<unsigned>(hook)].load();
        return found != nullptr ? reinterpret_cast<Function*>(found) : system;
    }

private:
    std::atomic<void*> found_[kHooks] = {};
};

// The replacements. Each has the signature of what it replaces, does just the same while translation is
// switched off, and never fails on its own account: without memory the texts stay as they are.
namespace hooked {
decltype(::LoadStringA) load_string_a;
decltype(::LoadStringW) load_string_w;
decltype(::LoadMenuIndirectA) load_menu_indirect_a;
decltype(::LoadMenuA) load_menu_a;
decltype(::LoadMenuW) load_menu_w;
decltype(::LoadResource) load_resource;
decltype(::FindResourceA) find_resource_a;
decltype(::FindResourceExA) find_resource_ex_a;
decltype(::FindResourceW) find_resource_w;
decltype(::FindResourceExW) find_resource_ex_w;
decltype(::LockResource) lock_resource;
decltype(::FreeResource) free_resource;
decltype(::SizeofResource) sizeof_resource;
decltype(::CreateDialogParamA) create_dialog_param_a;
decltype(::CreateDialogParamW) create_dialog_param_w;
decltype(::DialogBoxParamA) dialog_box_param_a;
decltype(::DialogBoxParamW) dialog_box_param_w;
decltype(::DialogBoxIndirectParamA) dialog_box_indirect_param_a;
decltype(::DialogBoxIndirectParamW) dialog_box_indirect_param_w;
decltype(::CreateDialogIndirectParamA) create_dialog_indirect_param_a;
decltype(::CreateDialogIndirectParamW) create_dialog_indirect_param_w;
decltype(::MessageBoxIndirectA) message_box_indirect_a;
decltype(::MessageBoxA) message_box_a;
decltype(::MessageBoxExA) message_box_ex_a;
} // namespace hooked

} // namespace qzr
