#include "cli/view.h"

#include "cli/json.h"
#include "cli/value_json.h"
#include "system/encoding.h"
#include "trees/tree.h"
#include "trees/values.h"

#include <algorithm>

namespace tool {

namespace {

constexpr std::size_t kWidestName = 28; // longer names push their value to the right
constexpr std::size_t kTypeWidth = 6;

struct Lines {
    const char *branch, *last_branch, *rail, *gap;
};
constexpr Lines kBoxLines = {"├─ ", "└─ ", "│  ", "   "};
constexpr Lines kAsciiLines = {"|- ", "`- ", "|  ", "   "};

Style style_of(ValueClass value_class) {
    switch (value_class) {
    case ValueClass::boolean:
    case ValueClass::integers:
    case ValueClass::reals:
        return Style::number;
    case ValueClass::text:
        return Style::text;
    case ValueClass::object:
        return Style::object;
    case ValueClass::nothing:
        break;
    }
    return Style::faint;
}

std::string padded(std::string text, std::size_t width) {
    const std::size_t count = character_count(text);
    if (count < width) text.append(width - count, ' ');
    return text;
}

struct NamedValue {
    std::string name;
    CQZVariant value;
};

std::vector<NamedValue> values_of(IParam& node) {
    std::vector<NamedValue> values;
    for (const CXString& name : value_names(node)) {
        if (const auto value = find_value(node, name)) values.push_back({utf8(name), *value});
    }
    return values;
}

class Drawer final : public TreeVisitor {
public:
    Drawer(Output& out, const ViewOptions& options)
        : out_(out), options_(options), lines_(options.ascii ? kAsciiLines : kBoxLines) {}

    bool enter(const WalkPath& path) override {
        const WalkStep& step = path.back();
        const bool too_deep = path.size() > options_.deepest;
        if (path.size() > 1) {
            ++sections_;
            draw_section(path, too_deep);
        }
        draw_values(path, !step.children.empty());
        return !too_deep;
    }

    void draw_summary() {
        out_.write(Style::faint, std::to_string(values_) + (values_ == 1 ? " value in " : " values in ") +
                                     std::to_string(sections_) + (sections_ == 1 ? " section" : " sections") +
                                     "\n");
    }

private:
    /// The lines of the sections around, for an entry of the section at the end of the path.
    void draw_rails(const WalkPath& path, std::size_t levels) {
        for (std::size_t i = 1; i < levels; ++i) {
            out_.write(Style::faint, path[i].last ? lines_.gap : lines_.rail);
        }
    }

    void draw_branch(bool last) { out_.write(Style::faint, last ? lines_.last_branch : lines_.branch); }

    void draw_section(const WalkPath& path, bool too_deep) {
        const WalkStep& step = path.back();
        draw_rails(path, path.size() - 1);
        draw_branch(step.last);
        out_.write(Style::section, "[" + printable(utf8(step.name)) + "]");
        if (too_deep && !step.children.empty()) {
            out_.write(Style::faint, " ... deeper sections are not shown (--depth)");
        }
        out_.write("\n");
    }

    void draw_values(const WalkPath& path, bool sections_follow) {
        std::vector<NamedValue> values = values_of(*path.back().first);
        std::size_t width = 0;
        for (NamedValue& value : values) {
            value.name = printable(value.name);
            width = std::max(width, std::min(character_count(value.name), kWidestName));
        }
        for (const NamedValue& value : values) {
            const bool last = !sections_follow && &value == &values.back();
            draw_rails(path, path.size());
            draw_branch(last);
            draw_value(value, width);
        }
        values_ += values.size();
    }

    void draw_value(const NamedValue& value, std::size_t width) {
        const ValueType& type = type_of(value.value);
        const std::string shown = value_shown(value.value, options_.full);
        out_.write(padded(value.name, width) + "  ");
        out_.write(Style::type, shown.empty() ? type.name : padded(type.name, kTypeWidth) + "  ");
        out_.write(style_of(type.value_class), shown);
        out_.write("\n");
    }

    Output& out_;
    const ViewOptions& options_;
    const Lines& lines_;
    std::size_t sections_ = 0;
    std::size_t values_ = 0;
};

class JsonTree final : public TreeVisitor {
public:
    explicit JsonTree(JsonWriter& json) : json_(json) {}

    bool enter(const WalkPath& path) override {
        json_.begin_object();
        if (path.size() > 1) {
            json_.key("name");
            json_.text(utf8(path.back().name));
        }
        json_.key("values");
        json_.begin_array();
        for (const NamedValue& value : values_of(*path.back().first)) {
            write_named(value);
        }
        json_.end_array();
        json_.key("sections");
        json_.begin_array();
        return true;
    }

    void leave(const WalkPath&) override {
        json_.end_array();
        json_.end_object();
    }

private:
    void write_named(const NamedValue& value) {
        json_.begin_object();
        json_.key("name");
        json_.text(value.name);
        json_.key("type");
        json_.text(type_of(value.value).name);
        json_.key("value");
        write_value(json_, value.value);
        json_.end_object();
    }

    JsonWriter& json_;
};

} // namespace

void draw_tree(Output& out, const std::string& title, IParam& tree, const ViewOptions& options) {
    out.write(Style::section, title);
    out.write("\n");
    Drawer drawer(out, options);
    walk(tree, nullptr, drawer);
    drawer.draw_summary();
}

void write_tree_json(Output& out, IParam& tree) {
    JsonWriter json(out);
    JsonTree visitor(json);
    walk(tree, nullptr, visitor);
    json.finish();
}

} // namespace tool
