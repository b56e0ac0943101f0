// Trees in the text form, as the library's own functions for whole files read and write them.
#include "formats/kinds.h"

#include "formats/limits.h"
#include "formats/text_edit.h"
#include "formats/text_file.h"
#include "formats/text_scan.h"
#include "system/failure.h"
#include "system/files.h"
#include "system/low_memory.h"

namespace tool {

namespace {

CQZRef<IParam> read_by_library(const std::wstring& path, const std::string& shown) {
    auto tree = new_tree();
    if (Param_IniFile2Param(path.c_str(), tree.Get()) == 0) fail(shown + ": cannot be read as a tree");
    return tree;
}

CQZRef<IParam> load(const Address& address, const LoadOptions&, Diagnostics& diagnostics) {
    const std::string text = read_source(address);
    {
        const IncludeDirectory directory(address.file);
        const TextScan scan(address.file, address.shown, text, &diagnostics); // for its warnings
    }
    if (!address.standard) return read_by_library(address.file.wstring(), address.shown);
    // The library reads blocks of memory as files too.
    const LowMemory block(text);
    return read_by_library(block.path(), address.shown);
}

void save(const Address& address, IParam& tree, const SaveOptions&) {
    if (address.standard) return replace_target(address, text_of_tree(tree, true));
    std::error_code ignored;
    if (std::filesystem::is_directory(address.file, ignored)) fail(address.shown + ": is a directory");
    if (Param_Param2IniFile(&tree, address.file.c_str()) == 0)
        fail(address.shown + ": cannot be written as a tree");
}

CQZRef<IParam> rehearse(IParam& tree, const SaveOptions&) { return tree_of_text(text_of_tree(tree, true)); }

} // namespace

const Kind kIniKind = {
    "ini",
    "FILE",
    Place::file_or_standard,
    "",
    "the text form, read and written as programs do, a line for each section",
    kTextForm,
    false,
    nullptr,
    load,
    save,
    rehearse,
    edit_text_file,
};

} // namespace tool
