#include "param/tree_walk.h"

#include <cstddef>
#include <functional>
#include <unordered_set>
#include <utility>

namespace qzr {

namespace {

// The nodes that a copy has made. When the target lies below the source, the walk comes upon them: they are
// no part of what was to be copied.
class MadeNodes {
public:
    void add(IParam* node) { nodes_.insert(node); }
    bool contains(IParam* node) const { return nodes_.count(node) != 0; }

    // Gives up the copy's reference. A node that dies of it was a passing view of a backend's data, and its
    // address may be used for another one.
    void release(CQZRef<IParam> node) {
        IParam* const address = node.Detach();
        if (address->Release() == 0) nodes_.erase(address);
    }

private:
    std::unordered_set<IParam*, std::hash<IParam*>, std::equal_to<>, HeapAllocator<IParam*>> nodes_;
};

struct CopiedLevel : WalkLevel {
    CopiedLevel(CQZRef<IParam> src, CQZRef<IParam> dst) : WalkLevel(std::move(src)), target(std::move(dst)) {}
    CQZRef<IParam> target;
};

// Backends whose nodes are views made anew by each opening hide that a node was made here, and the copy of a
// tree into itself would never end. No backend of that kind nests this deep.
constexpr std::size_t kMostLevelsOfViews = 512;

bool is_view(const CopiedLevel& level, const char* name, const CQZRef<IParam>& child) {
    return CQZRef<IParam>::Adopt(level.node->OpenSubParam(name, 0)) != child;
}

CQZRef<IParam> open_or_create(IParam& target, const char* name, MadeNodes& made) {
    if (IParam* const found = target.OpenSubParam(name, 0)) return CQZRef<IParam>::Adopt(found);
    CQZRef<IParam> created = create_child(target, name);
    made.add(created.Get());
    return created;
}

void copy_values(IParam& src, IParam& dst) {
    for_each_value(src, [&](const char* name, const CQZVariant& value) { dst.SetValue(name, &value); });
}

void copy(CQZRef<IParam> src, CQZRef<IParam> dst) {
    MadeNodes made;
    WalkStack<CopiedLevel> levels;
    levels.emplace_back(std::move(src), std::move(dst));
    while (!levels.empty()) {
        CopiedLevel& level = levels.back();
        CQZRef<IParam> child;
        const char* const name = level.next_child(child);
        if (name == nullptr) {
            copy_values(*level.node, *level.target);
            made.release(std::move(level.target));
            levels.pop_back();
            continue;
        }
        if (!child || made.contains(child.Get())) continue;
        if (levels.size() > kMostLevelsOfViews && is_view(level, name, child)) continue;
        CQZRef<IParam> target = open_or_create(*level.target, name, made);
        levels.emplace_back(std::move(child), std::move(target));
    }
}

} // namespace

} // namespace qzr

void Param_CopyTo(IParam* src, IParam* dst) {
    if (src == nullptr || dst == nullptr) return;
    qzr::copy(CQZRef<IParam>::Share(src), CQZRef<IParam>::Share(dst));
}
