#include "soak/tree_run.h"

#include "qzexception.h"
#include "soak/refusal.h"

#include <cstring>
#include <iterator>
#include <vector>

namespace {

constexpr unsigned kPayloads[QZVT_COUNT] = {0, 4, 1, 2, 4, 4, 4, 4, 8, 4, 0, 8, 16, 8, 16, 16, 32, 0, 0, 0};
constexpr int kDeepest = 3;

std::string random_text(Random& random, std::size_t most) {
    constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGH0123456789\xC4\xE9\xFC";
    std::string text(random.below(most + 1), ' ');
    for (char& c : text)
        c = kLetters[random.below(sizeof kLetters - 1)];
    return text;
}

std::vector<std::string> names(CTEnum<const char*>* taken) {
    const auto all = CQZRef<CTEnum<const char*>>::Adopt(taken);
    std::vector<std::string> found;
    for (const char* name = nullptr; all->Next(1, &name, nullptr) != 0;) {
        found.emplace_back(name);
        for (char& c : found.back())
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    }
    return found;
}

template <class Map>
typename Map::iterator any_of(Map& map, Random& random) {
    auto it = map.begin();
    std::advance(it, static_cast<std::ptrdiff_t>(random.below(map.size())));
    return it;
}

void clear_values(TreeRun::Node& node) {
    node.values.clear();
    for (auto& [name, child] : node.children)
        clear_values(child);
}

} // namespace

std::string told(const tagQZVARIANT& value) {
    const std::string type = std::to_string(value.vt) + ":";
    switch (value.vt) {
    case QZVT_TEXT:
        return type + (value.pszVal != nullptr ? value.pszVal : "");
    case QZVT_WTEXT:
        return type + std::string(reinterpret_cast<const char*>(value.pwszVal),
                                  2 * std::char_traits<wchar_t>::length(value.pwszVal));
    case QZVT_BLOB:
        return type + std::string(static_cast<const char*>(value.blobVal.pBlobData), value.blobVal.cbSize);
    default:
        return type + std::string(reinterpret_cast<const char*>(&value.boolVal), kPayloads[value.vt]);
    }
}

CQZVariant TreeRun::value() const {
    Random& random = work_.random;
    const auto number = [&] { return static_cast<int>(random.next()) / 4096; };
    const auto real = [&] { return number() / 8.0; };
    std::string bytes = "." + random_text(random, 2000); // empty ones read as none in storages
    const std::string wide = random_text(random, 300);
    const CQZVariant all[] = {
        {number(), QZVT_BOOL},
        {static_cast<unsigned char>(number())},
        {static_cast<unsigned short>(number())},
        {static_cast<unsigned long>(number())},
        {number()},
        {static_cast<unsigned>(number())},
        {static_cast<long>(number())},
        {real()},
        {static_cast<float>(number() % 100000) / 8},
        {tagSIZE{number(), number()}},
        {tagRSIZE{real(), real()}},
        {tagPOINT{number(), number()}},
        {tagRPOINT{real(), real()}},
        {tagRECT{number(), number(), number(), number()}},
        {tagRRECT{real(), real(), real(), real()}},
        {tagQZBLOB{static_cast<unsigned>(bytes.size()), bytes.data()}},
        {std::wstring(wide.begin(), wide.end()).c_str()},
        {random_text(random, random.one_in(20) ? 3000 : 60).c_str()},
    };
    while (true) {
        const CQZVariant& one = all[random.below(std::size(all))];
        if ((rules_.lost_types >> one.vt & 1) == 0) return one;
    }
}

// Names match whatever their case.
std::string TreeRun::cased(std::string name) const {
    if (work_.random.one_in(3)) name[0] = static_cast<char>(name[0] - 32);
    return name;
}

void TreeRun::change(IParam& root) {
    for (unsigned i = 0; i < rules_.steps; ++i)
        step(root);
}

void TreeRun::step(IParam& root) {
    Tree node = Tree::Share(&root);
    Node* model = &model_;
    for (int depth = 0; depth < kDeepest && !model->children.empty() && !work_.random.one_in(3); ++depth) {
        auto& [name, child] = *any_of(model->children, work_.random);
        node = Tree::Adopt(node->OpenSubParam(cased(name).c_str(), 0));
        work_.require(bool(node), "a child is gone: " + name);
        model = &child;
    }
    switch (work_.random.below(10)) {
    case 0:
        return remove(*node, *model);
    case 1:
        return create(*node, *model);
    case 2:
        return drop(*node, *model);
    case 3:
        return look(*node, *model);
    default:
        return set(*node, *model);
    }
}

void TreeRun::set(IParam& node, Node& model) {
    const std::string name = "v" + std::to_string(work_.random.below(30));
    const CQZVariant stored = value();
    const std::string wanted = told(stored);
    bool given_up = false;
    {
        const Refusing refusing(work_.refusal_random, work_.refusals);
        try {
            node.SetValue(cased(name).c_str(), &stored);
        } catch (const CXMemException&) {
            if (!refusing.happened()) throw;
        }
        given_up = refusing.happened();
    }
    CQZVariant found;
    const bool there = node.GetValue(name.c_str(), &found) != 0;
    const auto old = model.values.find(name);
    const bool as_before = old == model.values.end() ? !there : there && told(found) == old->second;
    if (there && told(found) == wanted) {
        ++work_.shared.checks;
        model.values[name] = wanted;
    } else {
        work_.require(given_up && as_before, "a value was not stored: " + name + ", " + wanted + ", found " +
                                                 (there ? told(found) : "none"));
    }
}

void TreeRun::remove(IParam& node, Node& model) {
    if (model.values.empty()) return;
    const std::string name = any_of(model.values, work_.random)->first;
    node.DeleteValue(cased(name).c_str());
    model.values.erase(name);
    CQZVariant found;
    work_.require(node.GetValue(name.c_str(), &found) == 0, "a deleted value is there: " + name);
}

void TreeRun::create(IParam& node, Node& model) {
    const std::string name = "n" + std::to_string(work_.random.below(6));
    const bool anew = work_.random.one_in(2);
    const bool known = model.children.count(name) != 0;
    const auto open = [&] {
        return Tree::Adopt(anew ? node.CreateSubParam(cased(name).c_str())
                                : node.OpenSubParam(cased(name).c_str(), 1));
    };
    Tree child;
    try {
        const Refusing refusing(work_.refusal_random, known ? 0 : work_.refusals);
        child = open();
    } catch (const CXMemException&) {
    }
    if (!child) child = open();
    work_.require(bool(child), "a child cannot be made: " + name);
    Node& made = model.children[name];
    if (anew && rules_.create == TreeRules::Create::empties) made = {};
    if (anew && rules_.create == TreeRules::Create::clears_values) clear_values(made);
}

void TreeRun::drop(IParam& node, Node& model) {
    if (model.children.empty()) return;
    const auto child = any_of(model.children, work_.random);
    node.DeleteSubParam(cased(child->first).c_str());
    if (rules_.deleted_child_stays) {
        child->second = {};
    } else {
        model.children.erase(child);
    }
}

void TreeRun::look(IParam& node, const Node& model) {
    for (const auto& [name, wanted] : model.values) {
        CQZVariant found;
        try {
            const Refusing refusing(work_.refusal_random, work_.refusals);
            if (node.GetValue(cased(name).c_str(), &found) == 0 && refusing.happened()) found.Clear();
        } catch (const CXMemException&) {
        }
        if (found.vt == QZVT_EMPTY) node.GetValue(name.c_str(), &found);
        work_.require(told(found) == wanted, "another value: " + name);
    }
}

void TreeRun::verify(IParam& node, const Node& model, int depth) const {
    std::size_t count = 0;
    for (const std::string& name : names(node.EnumValues())) {
        if (name == "@" && rules_.lists_default) continue;
        const auto wanted = model.values.find(name);
        work_.require(wanted != model.values.end(), "a value too many: " + name);
        CQZVariant found;
        work_.require(node.GetValue(name.c_str(), &found) != 0, "a value is listed and missing: " + name);
        work_.require(told(found) == wanted->second, "another value: " + name);
        ++count;
    }
    work_.require(count == model.values.size(), "values are missing");
    count = 0;
    for (const std::string& name : names(node.EnumSubParams())) {
        const auto wanted = model.children.find(name);
        work_.require(wanted != model.children.end(), "a child too many: " + name);
        const Tree child = Tree::Adopt(node.OpenSubParam(name.c_str(), 0));
        work_.require(bool(child), "a child is listed and missing: " + name);
        verify(*child, wanted->second, depth + 1);
        ++count;
    }
    work_.require(count == model.children.size(), "children are missing");
}
