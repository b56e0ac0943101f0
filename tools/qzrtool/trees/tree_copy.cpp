#include "trees/tree_copy.h"

#include "qzexception.h"
#include "trees/edit.h"

namespace tool {

namespace {

/// @return false when the backend refused
bool attempt(const std::function<void()>& work) {
    try {
        work();
        return true;
    } catch (const CXException& e) {
        if (e.GetCode() == QZERR_MEMORY || e.GetCode() == QZERR_CANCELLED) throw;
        return false;
    }
}

/// A separator would lead elsewhere.
bool is_plain(const CXString& name) { return name.GetSize() != 0 && name.Find(L'\\') < 0; }

struct Level {
    CQZRef<IParam> from, to;
    CXString name;
    std::vector<CXString> children;
    std::size_t next = 0;
};

class Copier {
public:
    Copier(IParam& from, IParam& to, const Refused& refused) : refused_(refused) {
        enter({CQZRef<IParam>::Share(&from), CQZRef<IParam>::Share(&to), {}, {}, 0});
    }

    void copy() {
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next == level.children.size()) {
                levels_.pop_back();
            } else {
                copy_section(level, level.children[level.next++]);
            }
        }
    }

private:
    void enter(Level level) {
        level.children = section_names(*level.from);
        levels_.push_back(std::move(level));
        for (const CXString& name : value_names(*levels_.back().from)) {
            if (!copy_value(levels_.back(), name)) refused_(path_text(sections(), name), "value");
        }
    }

    bool copy_value(const Level& level, const CXString& name) {
        if (!is_plain(name)) return false;
        const auto value = find_value(*level.from, name);
        return value && attempt([&] { level.to->SetValue(name.GetData(), &*value); });
    }

    void copy_section(const Level& level, const CXString& name) {
        Level child;
        child.name = name;
        const bool opened = is_plain(name) && attempt([&] {
                                child.from = open_section(*level.from, name);
                                if (child.from) {
                                    child.to =
                                        CQZRef<IParam>::Adopt(level.to->OpenSubParam(name.GetData(), 1));
                                }
                            });
        if (opened && child.from && child.to) return enter(std::move(child));
        auto path = sections();
        path.push_back(name);
        refused_(path_text(path), "section");
    }

    std::vector<CXString> sections() const {
        std::vector<CXString> names;
        for (std::size_t i = 1; i < levels_.size(); ++i) {
            names.push_back(levels_[i].name);
        }
        return names;
    }

    const Refused& refused_;
    std::vector<Level> levels_;
};

} // namespace

void copy_tree(IParam& from, IParam& to, const Refused& refused) { Copier(from, to, refused).copy(); }

CQZRef<IParam> in_memory(IParam& tree, const Refused& refused) {
    auto copy = new_tree();
    copy_tree(tree, *copy, refused);
    return copy;
}

void make_equal(IParam& live, IParam& before, IParam& wanted) {
    std::vector<Edit> removals;
    compare(before, wanted, [&](const Difference& difference) {
        const bool is_section = difference.is_section;
        Edit edit = {Edit::set_value, {names_on(difference.section), difference.value}, difference.after};
        if (difference.change == Change::removed) {
            edit.action = is_section ? Edit::remove_section : Edit::remove_value;
            removals.push_back(edit);
        } else if (is_section) {
            attempt([&] { make_section(live, edit.path.sections); });
        } else {
            attempt([&] { apply(live, edit); });
        }
    });
    for (const Edit& removal : removals) {
        attempt([&] { apply(live, removal); });
    }
}

} // namespace tool
