// The commands that write: convert, set, rm.
#include "commands/commands.h"
#include "formats/resolve_address.h"
#include "system/encoding.h"
#include "trees/tree_path.h"
#include "trees/values.h"

namespace tool {

namespace {

/// Names what the target will not hold. @return whether that is anything
bool tell_losses(Invocation& invocation, const Address& target, IParam& tree) {
    const Losses lost = losses(*target.kind, tree, {invocation.options.compact});
    for (const std::string& text : lost.texts) {
        invocation.diagnostics.warn(target.shown, "not held as it is: " + text);
    }
    if (const std::size_t more = lost.count - lost.texts.size(); more != 0) {
        invocation.diagnostics.warn(target.shown,
                                    std::to_string(more) + " more entries are not held as they are");
    }
    return lost.count != 0;
}

/// The tree of a file that is to be changed where it is.
CQZRef<IParam> load_to_change(Invocation& invocation, const Address& address) {
    if (address.standard) fail("standard input cannot be changed");
    return load_tree(address, {}, invocation.diagnostics);
}

} // namespace

ExitCode run_convert(Invocation& invocation) {
    const Address source = source_address(invocation.arguments[0]);
    const Address target = target_address(invocation.arguments[1]);
    const auto tree = load_tree(source, {invocation.options.salvage}, invocation.diagnostics);
    const bool lossy = tell_losses(invocation, target, *tree);
    invocation.diagnostics.stop_if_strict();
    target.kind->save(target, *tree, {invocation.options.compact});
    publish(target);
    return lossy ? kNo : kOk;
}

ExitCode run_set(Invocation& invocation) {
    const Address address = source_address(invocation.arguments[0]);
    const Edit edit = {Edit::set_value, value_path(invocation.arguments[1]),
                       parse_value(invocation.arguments[2])};
    if (edit.path.value.GetSize() == 0)
        fail(path_text(edit.path.sections) + " is the path of a section, not of a value");
    const auto tree = load_to_change(invocation, address);
    address.kind->edit(address, *tree, edit);
    publish(address);
    return kOk;
}

ExitCode run_rm(Invocation& invocation) {
    const Address address = source_address(invocation.arguments[0]);
    Edit edit = {Edit::remove_value, value_path(invocation.arguments[1]), {}};
    if (edit.path.value.GetSize() == 0) edit.action = Edit::remove_section;
    if (edit.action == Edit::remove_section && edit.path.sections.empty()) fail("the root cannot be removed");
    const auto tree = load_to_change(invocation, address);

    const auto section = find_section(*tree, edit.path.sections);
    const bool found =
        section && (edit.action == Edit::remove_section || find_value(*section, edit.path.value));
    if (!found) {
        const std::string path = path_text(edit.path.sections, edit.path.value);
        const bool is_section = section && open_section(*section, edit.path.value);
        print_error(address.shown + ": there is no value " + path +
                    (is_section ? ", but a section, which is removed under the name " + path + "\\" : ""));
        return kNo;
    }
    address.kind->edit(address, *tree, edit);
    publish(address);
    return kOk;
}

} // namespace tool
