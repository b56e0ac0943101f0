#include "core/windows_lean.h"
#include "param/tree_walk.h"
#include "qzstring.h"

#include <utility>

namespace qzr {

namespace {

void print(const char* format, const char* name) {
    CXString line;
    line.Format(format, name);
    OutputDebugStringA(line);
}

void print_value_names(IParam& node) {
    const NameEnum names = enum_values(node);
    while (const char* const name = next_name(names))
        print(" %s \n", name);
}

void dump(CQZRef<IParam> node) {
    WalkStack<> levels;
    while (true) {
        if (node) { // a node just reached
            print_value_names(*node);
            levels.emplace_back(std::move(node));
        }
        if (levels.empty()) return;
        const char* const name = levels.back().next_child(node);
        if (name != nullptr)
            print("--- %s ---\n", name);
        else
            levels.pop_back();
    }
}

} // namespace

} // namespace qzr

void Dump_Param(IParam* param) {
    if (param != nullptr) qzr::dump(CQZRef<IParam>::Share(param));
}
