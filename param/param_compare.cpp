#include "param/tree_walk.h"

#include <utility>

namespace qzr {

namespace {

struct ComparedLevel : WalkLevel {
    ComparedLevel(CQZRef<IParam> a, CQZRef<IParam> b) : WalkLevel(std::move(a)), other(std::move(b)) {}
    CQZRef<IParam> other;
};

bool holds_values_of(IParam& a, IParam& b) {
    const NameEnum names = enum_values(a);
    while (const char* const name = next_name(names)) {
        CQZVariant value, other;
        read_value(a, name, value);
        if (!read_value(b, name, other) || !(value == other)) return false;
    }
    return true;
}

bool holds_all_of(CQZRef<IParam> a, CQZRef<IParam> b) {
    WalkStack<ComparedLevel> levels;
    while (true) {
        if (a) { // a pair of nodes just reached
            if (!holds_values_of(*a, *b)) return false;
            levels.emplace_back(std::move(a), std::move(b));
        }
        if (levels.empty()) return true;
        const char* const name = levels.back().next_child(a);
        if (name == nullptr) {
            levels.pop_back();
            continue;
        }
        b = CQZRef<IParam>::Adopt(levels.back().other->OpenSubParam(name, 0));
        if (!a || !b) return false;
    }
}

} // namespace

} // namespace qzr

int Param_Cmp(IParam* a, IParam* b) {
    if (a == nullptr || b == nullptr) return 0;
    return qzr::holds_all_of(CQZRef<IParam>::Share(a), CQZRef<IParam>::Share(b)) ? 1 : 0;
}
