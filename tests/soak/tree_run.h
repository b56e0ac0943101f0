// A parameter tree of any backend under random changes, beside a model of it.
#pragma once

#include "qzparam.h"
#include "qzref.h"
#include "qzvariant.h"
#include "soak/work.h"

#include <map>
#include <string>

// Where a backend differs from a tree in memory.
struct TreeRules {
    enum class Create { empties, clears_values, keeps }; // a child that exists
    unsigned lost_types = 0;          // bits of the type codes that do not come back as they were
    bool deleted_child_stays = false; // empty
    Create create = Create::empties;
    bool lists_default = false; // each node has an empty value "@"
    unsigned steps = 120;
};

class TreeRun {
public:
    // Types and bytes of each value, by its name in lower case.
    struct Node {
        std::map<std::string, std::string> values;
        std::map<std::string, Node> children;
    };

    TreeRun(Work& work, const TreeRules& rules) : work_(work), rules_(rules) {}

    void change(IParam& root); // many random steps
    void verify(IParam& root) const { verify(root, model_, 0); }
    const Node& model() const { return model_; }

private:
    using Tree = CQZRef<IParam>;

    void step(IParam& root);
    void set(IParam& node, Node& model);
    void remove(IParam& node, Node& model);
    void create(IParam& node, Node& model);
    void drop(IParam& node, Node& model);
    void look(IParam& node, const Node& model);
    void verify(IParam& node, const Node& model, int depth) const;
    std::string cased(std::string name) const;
    CQZVariant value() const;

    Work& work_;
    const TreeRules rules_;
    Node model_;
};

std::string told(const tagQZVARIANT& value); // its type and its bytes
