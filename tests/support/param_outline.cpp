#include "support/param_outline.h"

#include "qzvariant.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

std::string shown_value(IParam& node, const std::string& name) {
    CQZVariant value;
    if (node.GetValue(name.c_str(), &value) == 0) return " " + name + "!";
    if (value.vt == QZVT_EMPTY && name == "@") return "";
    return " " + name + (value.vt == QZVT_INT ? "=" + std::to_string(value.intVal) : "");
}

std::string shown_child(IParam& node, const std::string& name, bool ordered) {
    const auto child = CQZRef<IParam>::Adopt(node.OpenSubParam(name.c_str(), 0));
    return child ? name + "{" + outline_of(*child, ordered) + "}" : name + "!";
}

// For trees that take "\" in a value's name as it is.
void put_int(IParam& root, const std::string& path, int value) {
    const std::size_t stop = path.rfind('\\');
    const auto node = CQZRef<IParam>::Adopt(root.OpenSubParam(path.substr(0, stop).c_str(), 0));
    set_int(*node, path.substr(stop + 1).c_str(), value);
}

} // namespace

std::string outline_of(IParam& node, bool ordered) {
    std::vector<std::string> values = take_names(node.EnumValues());
    std::vector<std::string> children = take_names(node.EnumSubParams());
    if (!ordered) {
        std::sort(values.begin(), values.end());
        std::sort(children.begin(), children.end());
    }
    std::string line;
    for (const std::string& name : values)
        line += shown_value(node, name);
    for (const std::string& name : children)
        line += " " + shown_child(node, name, ordered);
    return line.empty() ? line : line.substr(1);
}

void set_int(IParam& node, const char* name, int value) {
    const CQZVariant stored(value);
    node.SetValue(name, &stored);
}

int get_int(IParam& node, const char* name) {
    CQZVariant value;
    return node.GetValue(name, &value) != 0 && value.vt == QZVT_INT ? value.intVal : kNoValue;
}

void run_steps(IParam& root, const std::string& steps) {
    int number = 0;
    for (std::size_t at = 0; at < steps.size();) {
        const std::size_t end = std::min(steps.find("; ", at), steps.size());
        const std::string step = steps.substr(at, end - at);
        const std::string what = step.substr(0, step.find(' '));
        const std::string text = step.substr(std::min(what.size() + 1, step.size()));
        const char* const name = text.c_str();
        ++number;
        if (what == "set")
            set_int(root, name, number);
        else if (what == "put")
            put_int(root, text, number);
        else if (what == "delete")
            root.DeleteValue(name);
        else if (what == "drop")
            root.DeleteSubParam(name);
        else if (what == "clear")
            root.Clear();
        else if (what == "create")
            CQZRef<IParam>::Adopt(root.CreateSubParam(name));
        else if (what == "make")
            CQZRef<IParam>::Adopt(root.OpenSubParam(name, 1));
        else if (what == "open")
            CQZRef<IParam>::Adopt(root.OpenSubParam(name, 0));
        else
            ADD_FAILURE() << "no step is called " << what;
        at = end + 2;
    }
}

CQZRef<IParam> memory_tree(const std::string& steps) {
    auto root = CQZRef<IParam>::Adopt(new_MemParam());
    run_steps(*root, steps);
    return root;
}
