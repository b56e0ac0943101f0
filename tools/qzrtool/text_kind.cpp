// Trees in the text form, as files.
#include "kinds.h"

#include "encoding.h"
#include "files.h"
#include "statements.h"
#include "text_edit.h"
#include "text_file.h"
#include "text_scan.h"

namespace tool {

namespace {

bool recognises(std::string_view bytes) { return bytes.find('\0') == std::string_view::npos; }

CQZRef<IParam> load(const Address& address, const LoadOptions&, Diagnostics& diagnostics) {
    const std::string text = read_file(address.file, address.shown);
    const IncludeDirectory directory(address.file);
    const TextScan scan(address.file, address.shown, text, &diagnostics);
    return tree_of_text(scan.text());
}

void save(const Address& address, IParam& tree, const SaveOptions& options) {
    replace_file(address.file, text_of_tree(tree, options.compact), address.shown);
}

CQZRef<IParam> rehearse(IParam& tree, const SaveOptions& options) {
    return tree_of_text(text_of_tree(tree, options.compact));
}

const char* why_text_is_lost(std::string_view text) {
    if (find_ascii(text, '|') != text.npos || text.find_first_of("\r\n") != text.npos) {
        return "a text ends at \"|\" and at line breaks";
    }
    return trim_right(text).size() < text.size() ? "blanks at the end of a text are not stored" : nullptr;
}

const char* why_lost(const tagQZVARIANT& value) {
    switch (value.vt) {
    case QZVT_OBJECT:
        return "objects have no text form";
    case QZVT_WTEXT:
        return "wide text is stored as narrow text";
    case QZVT_UCHAR:
        return "a byte reads back as 0 from text";
    case QZVT_TEXT:
        return why_text_is_lost(value.pszVal != nullptr ? value.pszVal : "");
    case QZVT_DOUBLE:
    case QZVT_FLOAT:
    case QZVT_RSIZE:
    case QZVT_RPOINT:
    case QZVT_RRECT:
        return "reals are stored with 14 digits";
    default:
        return nullptr;
    }
}

} // namespace

const Kind kTextKind = {
    "text",
    ".qzt .txt",
    "a file in the sectioned text form, in the ANSI code page",
    "objects; bytes other than 0; wide text as such; text with \"|\", line breaks or blanks at its end; more "
    "than 14 "
    "digits of reals",
    recognises,
    load,
    save,
    rehearse,
    why_lost,
    edit_text_file,
};

} // namespace tool
