// The binary form of trees: for each child its name and, at once, its own form; an empty name; for each value
// its name and the variant; an empty name.
#include "param/tree_walk.h"
#include "qzexception.h"
#include "qzparam.h"
#include "qzstream.h"

#include <utility>

namespace qzr {

namespace {

constexpr int kMostNameBytes = 1024;

// An enumerated value that is gone is written as the empty one: its name is in the stream already, and a
// reader expects a variant behind it.
void save_values(IXStream& stream, IParam& node) {
    for_each_value(node, [&](const char* name, const CQZVariant& value) {
        stream.WriteString(name);
        stream.WriteVariant(&value);
    });
    stream.WriteString("");
}

void save_tree(IXStream& stream, IParam& root) {
    WalkStack<> levels;
    levels.emplace_back(CQZRef<IParam>::Share(&root));
    while (!levels.empty()) {
        CQZRef<IParam> child;
        const char* const name = levels.back().next_child(child);
        if (name == nullptr) {
            stream.WriteString("");
            save_values(stream, *levels.back().node);
            levels.pop_back();
        } else if (*name != '\0' && child) {
            stream.WriteString(name);
            levels.emplace_back(std::move(child));
        }
    }
}

void empty_node(IParam& node) {
    node.DeleteAllSubParams();
    node.DeleteAllValues();
}

class TreeLoader {
public:
    explicit TreeLoader(IXStream& stream) : stream_(stream), size_(stream.GetSize()) {}

    // Nodes open on a stack; each finishes its children before its values.
    void load(IParam& root) {
        if (size_ == 0) return;
        Vector<CQZRef<IParam>> nodes;
        nodes.push_back(CQZRef<IParam>::Share(&root));
        while (!nodes.empty()) {
            if (read_name()) {
                CQZRef<IParam> child = create_child(*nodes.back(), name_);
                empty_node(*child); // not every tree empties a child that exists
                nodes.push_back(std::move(child));
            } else {
                load_values(*nodes.back());
                nodes.pop_back();
            }
        }
    }

private:
    // The next name of a list, or false at its end. A name that ends with a line feed keeps it; of one that
    // is too long the rest is read as the next item.
    bool read_name() {
        if (stream_.GetPosition() >= size_) return false;
        const int characters = stream_.ReadLine(name_, kMostNameBytes);
        name_[kMostNameBytes] = '\0'; // not written when the name fills the buffer
        return characters >= 2;
    }

    void load_values(IParam& node) {
        while (read_name()) {
            stream_.ReadVariant(&value_);
            node.SetValue(name_, &value_);
        }
    }

    IXStream& stream_;
    const unsigned size_;
    CQZVariant value_;
    char name_[kMostNameBytes + 2] = {};
};

} // namespace

} // namespace qzr

int SaveParamToXStream(IXStream* stream, IParam* param) {
    if (stream == nullptr || param == nullptr) return 0;
    try {
        qzr::save_tree(*stream, *param);
        return 1;
    } catch (const CXFileException&) {
        return 0;
    }
}

int LoadParamFromXStream(IXStream* stream, IParam* param) {
    if (stream == nullptr || param == nullptr) return 0;
    try {
        qzr::empty_node(*param);
        qzr::TreeLoader(*stream).load(*param);
        return 1;
    } catch (const CXEofException&) {
        return 1;
    } catch (const CXFileException&) {
        qzr::empty_node(*param);
        return 0;
    }
}
