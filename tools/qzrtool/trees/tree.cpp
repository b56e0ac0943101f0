#include "trees/tree.h"

#include "system/encoding.h"
#include "system/failure.h"
#include "trees/values.h"

namespace tool {

namespace {

std::vector<CXString> collect(qz::Names names) { return {names.begin(), names.end()}; }

/// The names that open in first, then those that open in second alone.
std::vector<CXString> child_names(IParam* first, IParam* second) {
    std::vector<CXString> names;
    if (first != nullptr) {
        for (const CXString& name : section_names(*first)) {
            if (open_section(*first, name)) names.push_back(name);
        }
    }
    if (second != nullptr) {
        for (const CXString& name : section_names(*second)) {
            const bool known = first != nullptr && open_section(*first, name);
            if (!known && open_section(*second, name)) names.push_back(name);
        }
    }
    return names;
}

class Comparer final : public TreeVisitor {
public:
    explicit Comparer(const std::function<void(const Difference&)>& report) : report_(report) {}

    bool enter(const WalkPath& path) override {
        const WalkStep& step = path.back();
        if (!step.first || !step.second) report_section(path);
        if (step.first) report_changed_and_removed(path);
        if (step.second) report_added(path);
        return true;
    }

private:
    void report_section(const WalkPath& path) {
        const Change change = path.back().first ? Change::removed : Change::added;
        report_({change, true, path, {}, {}, {}});
    }

    void report_changed_and_removed(const WalkPath& path) {
        const WalkStep& step = path.back();
        for (const CXString& name : value_names(*step.first)) {
            const auto before = find_value(*step.first, name);
            if (!before) continue;
            const auto after = step.second ? find_value(*step.second, name) : std::nullopt;
            if (!after) {
                report_value(path, Change::removed, name, *before, {});
            } else if (!same_value(*before, *after)) {
                report_value(path, Change::changed, name, *before, *after);
            }
        }
    }

    void report_added(const WalkPath& path) {
        const WalkStep& step = path.back();
        for (const CXString& name : value_names(*step.second)) {
            if (step.first && find_value(*step.first, name)) continue;
            if (const auto after = find_value(*step.second, name)) {
                report_value(path, Change::added, name, {}, *after);
            }
        }
    }

    void report_value(const WalkPath& path, Change change, const CXString& name, const CQZVariant& before,
                      const CQZVariant& after) {
        report_({change, false, path, name, before, after});
    }

    const std::function<void(const Difference&)>& report_;
};

} // namespace

std::vector<CXString> section_names(IParam& node) { return collect(qz::child_names(node)); }
std::vector<CXString> value_names(IParam& node) { return collect(qz::value_names(node)); }

CQZRef<IParam> open_section(IParam& node, const CXString& name) {
    return CQZRef<IParam>::Adopt(node.OpenSubParam(name.GetData(), 0));
}

CQZRef<IParam> find_section(IParam& root, const std::vector<CXString>& sections) {
    auto node = CQZRef<IParam>::Share(&root);
    for (const CXString& name : sections) {
        node = open_section(*node, name);
        if (!node) break;
    }
    return node;
}

CQZRef<IParam> make_section(IParam& root, const std::vector<CXString>& sections) {
    auto node = CQZRef<IParam>::Share(&root);
    for (const CXString& name : sections) {
        node = CQZRef<IParam>::Adopt(node->OpenSubParam(name.GetData(), 1));
        if (!node) throw CXMemException();
    }
    return node;
}

std::string path_text(const std::vector<CXString>& sections, const CXString& value) {
    std::string text;
    for (const CXString& name : sections) {
        text += "\\" + utf8(name);
    }
    const bool names_value = value.GetSize() != 0;
    if (names_value || text.empty()) text += "\\" + utf8(value);
    return printable(text);
}

std::vector<CXString> names_on(const WalkPath& path) {
    std::vector<CXString> names;
    for (std::size_t i = 1; i < path.size(); ++i) {
        names.push_back(path[i].name);
    }
    return names;
}

void walk(IParam& first, IParam* second, TreeVisitor& visitor) {
    WalkPath path;
    const auto visit = [&](WalkStep step) {
        step.children = child_names(step.first.Get(), step.second.Get());
        path.push_back(std::move(step));
        if (!visitor.enter(path)) path.back().next = path.back().children.size();
    };

    visit({CQZRef<IParam>::Share(&first), CQZRef<IParam>::Share(second), {}, {}, 0, true});
    while (!path.empty()) {
        WalkStep& step = path.back();
        if (step.next == step.children.size()) {
            visitor.leave(path);
            path.pop_back();
            continue;
        }
        WalkStep child;
        child.name = step.children[step.next++];
        child.last = step.next == step.children.size();
        if (step.first) child.first = open_section(*step.first, child.name);
        if (step.second) child.second = open_section(*step.second, child.name);
        if (child.first || child.second) visit(std::move(child));
    }
}

void compare(IParam& before, IParam& after, const std::function<void(const Difference&)>& report) {
    Comparer comparer(report);
    walk(before, &after, comparer);
}

bool equal(IParam& a, IParam& b) {
    bool same = true;
    compare(a, b, [&](const Difference&) { same = false; });
    return same;
}

} // namespace tool
