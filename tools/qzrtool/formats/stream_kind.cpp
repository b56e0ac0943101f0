// Trees in the binary form of SaveParamToXStream, as files.
#include "formats/kinds.h"

#include "formats/stream_check.h"
#include "qzbytes.h"
#include "system/failure.h"

namespace tool {

namespace {

bool recognises(std::string_view bytes) { return bytes.find('\0') != std::string_view::npos; }

std::string encode(IParam& tree) {
    const auto stream = qz::new_stream();
    if (SaveParamToXStream(stream.Get(), &tree) == 0) fail("the tree cannot be written as a stream");
    return qz::bytes_of(*stream);
}

CQZRef<IParam> load(const Address& address, const LoadOptions& options, Diagnostics& diagnostics) {
    const auto stream = qz::stream_of(read_source(address));
    auto tree = new_tree();
    if (const auto damage = find_damage(*stream, *tree)) {
        const std::string place = address.shown + ": at byte " + std::to_string(damage->offset);
        if (!options.salvage) fail(place + ": " + damage->text + " (--salvage uses what can be read)");
        diagnostics.warn(place, damage->text);
        return tree;
    }
    stream->Seek(0, 0);
    if (LoadParamFromXStream(stream.Get(), tree.Get()) == 0)
        fail(address.shown + ": cannot be read as a tree");
    return tree;
}

void save(const Address& address, IParam& tree, const SaveOptions&) { replace_target(address, encode(tree)); }

CQZRef<IParam> rehearse(IParam& tree, const SaveOptions&) {
    auto reread = new_tree();
    if (!qz::read_bytes(*reread, encode(tree))) fail("the tree does not read back from a stream");
    return reread;
}

} // namespace

const Kind kStreamKind = {
    "stream",
    "FILE",
    Place::file_or_standard,
    ".qzs .stream",
    "a file in the compact binary form",
    kStreamForm,
    false,
    recognises,
    load,
    save,
    rehearse,
    edit_by_rewriting,
};

} // namespace tool
