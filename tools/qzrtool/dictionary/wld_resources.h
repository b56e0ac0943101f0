// The texts of a module's resources.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tool {

struct ResourceText {
    std::wstring context; // as keys of dictionaries begin, its end included
    std::wstring text;
};

/// The texts of string tables, menus and dialogs, in the order of the resources and in all their languages.
/// Damaged resources are told through warn and give what stands before the damage. Fails when the file is no
/// module.
std::vector<ResourceText> texts_of_module(const std::wstring& argument,
                                          const std::function<void(const std::string&)>& warn);

// What stands in one resource. @return false when it is damaged; texts has what stands before
bool texts_of_strings(const std::string& bytes, std::vector<std::wstring>& texts);
bool texts_of_menu(const std::string& bytes, std::vector<std::wstring>& texts);
bool texts_of_dialog(const std::string& bytes, std::vector<std::wstring>& texts);

} // namespace tool
