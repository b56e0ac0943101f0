#include "formats/kinds.h"

#include "system/encoding.h"
#include "system/failure.h"
#include "trees/values.h"

namespace tool {

namespace {

// Guessing goes from the front: a compound file begins with a mark of its own, the stream form always has a
// zero byte, text never.
const Kind* const kKinds[] = {&kStorageKind, &kStreamKind, &kTextKind, &kIniKind, &kLiveKind, &kRegistryKind};

std::string entry_loss(const Kind& kind, const Difference& difference) {
    if (difference.change == Change::added) return difference.path() + ": appears in addition";
    if (difference.is_section) return difference.path() + ": a section of this name cannot be kept";
    const std::string type = type_of(difference.before).name;
    const char* why = why_lost(kind.form, difference.before);
    const bool by_name = difference.change == Change::removed && difference.before.vt != QZVT_OBJECT;
    if (by_name) return difference.path() + ": a " + type + " of this name cannot be kept";
    if (why != nullptr) return difference.path() + ": " + why;
    return difference.path() + ": " + type + " " + value_shown(difference.before, false) + " reads back as " +
           type_of(difference.after).name + " " + value_shown(difference.after, false);
}

} // namespace

std::span<const Kind* const> kinds() { return kKinds; }

const Kind* kind_named(std::string_view name) {
    for (const Kind* kind : kKinds) {
        if (kind->name == name) return kind;
    }
    return nullptr;
}

const Kind* kind_with_extension(std::string_view extension) {
    for (const Kind* kind : kKinds) {
        if (!extension.empty() && has_word(kind->extensions, extension)) return kind;
    }
    return nullptr;
}

const Kind* kind_of_contents(std::string_view bytes) {
    for (const Kind* kind : kKinds) {
        if (!bytes.empty() && kind->recognises != nullptr && kind->recognises(bytes)) return kind;
    }
    return nullptr;
}

std::string kind_names() {
    std::string names;
    for (const Kind* kind : kKinds) {
        if (!names.empty()) names += ", ";
        names += kind->name;
    }
    return names;
}

CQZRef<IParam> load_tree(const Address& address, const LoadOptions& options, Diagnostics& diagnostics) {
    auto tree = address.kind->load(address, options, diagnostics);
    diagnostics.stop_if_strict();
    return tree;
}

Losses losses(const Kind& kind, IParam& tree, const SaveOptions& options) {
    Losses lost;
    const auto after = kind.rehearse(tree, options);
    compare(tree, *after, [&](const Difference& difference) {
        if (lost.count++ < Losses::kMostTexts) lost.texts.push_back(entry_loss(kind, difference));
    });
    return lost;
}

void refuse_lost_value(const Address& address, const Edit& edit) {
    if (edit.action != Edit::set_value) return;
    const auto alone = new_tree();
    apply(*alone, edit);
    const Losses lost = losses(*address.kind, *alone, {});
    if (lost.count != 0) fail(address.shown + ": not changed: " + lost.texts.front());
}

void edit_by_rewriting(const Address& address, IParam& loaded, const Edit& edit) {
    apply(loaded, edit);
    const Losses lost = losses(*address.kind, loaded, {});
    if (lost.count != 0) fail(address.shown + ": not changed: " + lost.texts.front());
    address.kind->save(address, loaded, {});
}

} // namespace tool
