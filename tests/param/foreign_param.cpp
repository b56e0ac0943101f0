#include "param/foreign_param.h"

#include "qzexception.h"
#include "support/param_outline.h"

#include <algorithm>

namespace {

// Entries are found by their exact name; nothing is a path.
template <class Entries>
auto* find_entry(Entries& entries, const char* name) {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](auto& entry) { return entry.first == name; });
    return found != entries.end() ? &found->second : nullptr;
}

class Names final : public CQZUnknownImpl<CTEnum<const char*>> {
public:
    Names(ForeignTree& tree, std::vector<std::string> names) : tree_(tree), names_(std::move(names)) {
        ++tree_.held;
    }
    ~Names() override { --tree_.held; }
    int Next(int count, const char** items, unsigned* fetched) override {
        tree_.count_call();
        unsigned n = 0;
        for (; count > 0 && next_ < names_.size(); --count)
            items[n++] = names_[next_++].c_str();
        if (fetched != nullptr) *fetched = n;
        return n != 0;
    }
    int Skip(unsigned) override { return 1; }
    void Reset() override { next_ = 0; }

private:
    ForeignTree& tree_;
    std::vector<std::string> names_;
    std::size_t next_ = 0;
};

class View final : public CQZUnknownImpl<IParam> {
public:
    View(ForeignTree& tree, ForeignTree::Node& node) : tree_(tree), node_(node) { ++tree_.held; }
    ~View() override { --tree_.held; }

    IParam* CreateSubParam(const char* name) override {
        tree_.count_call();
        if (!tree_.creates) return nullptr;
        node_.children.emplace_back(name, std::make_unique<ForeignTree::Node>());
        return tree_.view(*node_.children.back().second).Detach();
    }
    IParam* OpenSubParam(const char* name, int create) override {
        tree_.count_call();
        if (auto* child = find_entry(node_.children, name)) return tree_.view(**child).Detach();
        return create != 0 ? CreateSubParam(name) : nullptr;
    }
    CTEnum<const char*>* EnumSubParams() override {
        tree_.count_call();
        return tree_.enumerates_children ? names_of(node_.children) : nullptr;
    }
    int GetValue(const char* name, tagQZVARIANT* out) override {
        tree_.count_call();
        const CQZVariant* const value = find_entry(node_.values, name);
        if (value != nullptr) QZVariantCopy(out, value);
        return value != nullptr;
    }
    void SetValue(const char* name, const tagQZVARIANT* value) override {
        tree_.count_call();
        if (CQZVariant* const stored = find_entry(node_.values, name))
            *stored = *value;
        else
            node_.values.emplace_back(name, CQZVariant(*value));
    }
    CTEnum<const char*>* EnumValues() override {
        tree_.count_call();
        return tree_.enumerates_values ? names_of(node_.values) : nullptr;
    }
    void DeleteSubParam(const char*) override {}
    void DeleteAllSubParams() override { node_.children.clear(); }
    void DeleteValue(const char*) override {}
    void DeleteAllValues() override { node_.values.clear(); }
    void Clear() override {
        DeleteAllValues();
        DeleteAllSubParams();
    }

private:
    template <class Entries>
    CTEnum<const char*>* names_of(const Entries& entries) {
        std::vector<std::string> names;
        for (const auto& entry : entries)
            names.push_back(entry.first);
        if (static_cast<const void*>(&entries) == &node_.children && tree_.listed_only != nullptr)
            names.insert(names.begin(), tree_.listed_only);
        return new Names(tree_, std::move(names));
    }

    ForeignTree& tree_;
    ForeignTree::Node& node_;
};

} // namespace

ForeignTree::ForeignTree(const std::string& steps) { Param_CopyTo(memory_tree(steps).Get(), root().Get()); }

CQZRef<IParam> ForeignTree::view(Node& node) { return CQZRef<IParam>::Adopt(new View(*this, node)); }

void ForeignTree::count_call() {
    if (calls_left > 0 && --calls_left == 0) throw CXException(kFailure);
}
