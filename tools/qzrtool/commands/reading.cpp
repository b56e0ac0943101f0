// The commands that only read: show, get, diff.
#include "cli/value_json.h"
#include "commands/commands.h"
#include "formats/resolve_address.h"
#include "system/encoding.h"
#include "trees/tree_path.h"
#include "trees/values.h"

namespace tool {

namespace {

CQZRef<IParam> load(Invocation& invocation, const Address& address) {
    return load_tree(address, {invocation.options.salvage}, invocation.diagnostics);
}

ExitCode not_found(const Address& address, const std::string& path, const char* what) {
    print_error(address.shown + ": there is no " + what + " " + path);
    return kNo;
}

void write_difference(Output& out, const Difference& difference, bool full) {
    static constexpr struct {
        const char* sign;
        Style style;
    } kSigns[] = {{"+ ", Style::added}, {"- ", Style::removed}, {"~ ", Style::changed}};
    const auto& [sign, style] = kSigns[static_cast<int>(difference.change)];
    const auto shown = [full](const CQZVariant& value) {
        const std::string text = value_shown(value, full);
        return std::string(type_of(value).name) + (text.empty() ? "" : " ") + text;
    };

    std::string line = sign + difference.path();
    if (difference.is_section) {
        line += "\\";
    } else {
        line += "  ";
        if (difference.change != Change::added) line += shown(difference.before);
        if (difference.change == Change::changed) line += " -> ";
        if (difference.change != Change::removed) line += shown(difference.after);
    }
    out.write(style, line);
    out.write("\n");
}

void write_side(JsonWriter& json, const char* key, const CQZVariant& value) {
    json.key(key);
    json.begin_object();
    json.key("type");
    json.text(type_of(value).name);
    json.key("value");
    write_value(json, value);
    json.end_object();
}

void write_difference(JsonWriter& json, const Difference& difference) {
    static constexpr const char* kChanges[] = {"added", "removed", "changed"};
    json.begin_object();
    json.key("change");
    json.text(kChanges[static_cast<int>(difference.change)]);
    json.key("what");
    json.text(difference.is_section ? "section" : "value");
    json.key("path");
    json.text(difference.path());
    if (!difference.is_section) {
        if (difference.change != Change::added) write_side(json, "before", difference.before);
        if (difference.change != Change::removed) write_side(json, "after", difference.after);
    }
    json.end_object();
}

bool write_json_diff(Output& out, IParam& before, IParam& after) {
    bool same = true;
    JsonWriter json(out);
    json.begin_object();
    json.key("changes");
    json.begin_array();
    compare(before, after, [&](const Difference& difference) {
        same = false;
        write_difference(json, difference);
    });
    json.end_array();
    json.key("equal");
    json.raw(same ? "true" : "false");
    json.end_object();
    json.finish();
    return same;
}

} // namespace

ExitCode run_show(Invocation& invocation) {
    const Address address = source_address(invocation.arguments[0]);
    auto tree = load(invocation, address);
    std::string title = address.shown + " (" + address.kind->name + ")";
    if (invocation.arguments.size() > 1) {
        const std::vector<CXString> path = section_path(invocation.arguments[1]);
        const std::string text = path_text(path);
        tree = find_section(*tree, path);
        if (!tree) return not_found(address, text, "section");
        title += " " + text;
    }
    if (invocation.options.json) {
        write_tree_json(invocation.out, *tree);
    } else {
        draw_tree(invocation.out, title, *tree, invocation.options.view);
    }
    return kOk;
}

ExitCode run_get(Invocation& invocation) {
    const Address address = source_address(invocation.arguments[0]);
    const TreePath path = value_path(invocation.arguments[1]);
    const auto tree = load(invocation, address);
    const std::string text = path_text(path.sections, path.value);
    const auto section = find_section(*tree, path.sections);
    if (path.value.GetSize() == 0) fail(text + " is the path of a section; qzrtool show draws it");
    if (section && !find_value(*section, path.value) && open_section(*section, path.value)) {
        print_error(address.shown + ": " + text + " is a section; qzrtool show draws it");
        return kNo;
    }
    const auto value = section ? find_value(*section, path.value) : std::nullopt;
    if (!value) return not_found(address, text, "value");
    if (invocation.options.json) {
        JsonWriter json(invocation.out);
        json.begin_object();
        json.key("path");
        json.text(text);
        json.key("type");
        json.text(type_of(*value).name);
        json.key("value");
        write_value(json, *value);
        json.end_object();
        json.finish();
    } else {
        invocation.out.write(value_text(*value) + "\n");
    }
    return kOk;
}

ExitCode run_diff(Invocation& invocation) {
    const Address first = source_address(invocation.arguments[0]);
    const Address second = source_address(invocation.arguments[1]);
    const auto before = load(invocation, first);
    const auto after = load(invocation, second);
    if (invocation.options.json) return write_json_diff(invocation.out, *before, *after) ? kOk : kNo;
    bool same = true;
    compare(*before, *after, [&](const Difference& difference) {
        same = false;
        write_difference(invocation.out, difference, invocation.options.view.full);
    });
    return same ? kOk : kNo;
}

} // namespace tool
