// Trees in the text form, as files.
#include "formats/kinds.h"

#include "formats/text_edit.h"
#include "formats/text_file.h"
#include "formats/text_scan.h"

namespace tool {

namespace {

bool recognises(std::string_view bytes) { return bytes.find('\0') == std::string_view::npos; }

CQZRef<IParam> load(const Address& address, const LoadOptions&, Diagnostics& diagnostics) {
    const std::string text = read_source(address);
    const IncludeDirectory directory(address.file);
    const TextScan scan(address.file, address.shown, text, &diagnostics);
    return tree_of_text(scan.text());
}

void save(const Address& address, IParam& tree, const SaveOptions& options) {
    replace_target(address, text_of_tree(tree, options.compact));
}

CQZRef<IParam> rehearse(IParam& tree, const SaveOptions& options) {
    return tree_of_text(text_of_tree(tree, options.compact));
}

} // namespace

const Kind kTextKind = {
    "text",
    "FILE",
    Place::file_or_standard,
    ".qzt .txt",
    "a file in the sectioned text form, in the ANSI code page",
    kTextForm,
    false,
    recognises,
    load,
    save,
    rehearse,
    edit_text_file,
};

} // namespace tool
