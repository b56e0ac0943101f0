#include "param/text/text_form.h"

#include "param/memory/mem_param.h"
#include "param/text/statement_reader.h"
#include "param/text/text_parser.h"
#include "param/text/value_text.h"
#include "param/tree_walk.h"
#include "qzexception.h"
#include "qzparam.h"
#include "qzstring.h"
#include "string/multibyte.h"
#include "string/scan.h"

#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace qzr {

namespace {

struct TextLevel : WalkLevel {
    TextLevel(CQZRef<IParam> at, std::size_t length) : WalkLevel(std::move(at)), path_length(length) {}

    std::size_t path_length; // of the node's section path
};

// Reads the values of one node. Those of a tree in memory are not copied: writing them as text calls nobody
// but the low-memory sink, which leaves the tree alone.
class ValueReader {
public:
    explicit ValueReader(IParam& node) : node_(node), in_memory_(dynamic_cast<CMemParam*>(&node)) {}

    // Null for a name that does not open; good until the next one is read.
    const tagQZVARIANT* read(const char* name) {
        if (in_memory_ != nullptr) return in_memory_->borrow_value(name, borrowed_) ? &borrowed_ : nullptr;
        return read_value(node_, name, copy_) ? &copy_ : nullptr;
    }

private:
    IParam& node_;
    const CMemParam* const in_memory_; // the same, or null for any other kind
    tagQZVARIANT borrowed_;
    CQZVariant copy_;
};

// A name that does not open is left out, as is a value of a type without a letter.
void append_values(IParam& node, TextBuffer& out) {
    const NameEnum names = enum_values(node);
    ValueReader values(node);
    while (const char* const name = next_name(names)) {
        const tagQZVARIANT* const value = values.read(name);
        if (value == nullptr) continue;
        const std::size_t before = out.size();
        out.append("\t| ");
        out.append(std::string_view(name, text_length(name)));
        out.append('=');
        if (!append_value_text(*value, out)) out.cut(before);
    }
}

void append_section(IParam& node, std::string_view path, TextBuffer& out) {
    out.append("\r\n[");
    out.append(path.empty() ? std::string_view("\\") : path);
    out.append("]\t");
    append_values(node, out);
}

// Writes section by section; finish is told where in out each one starts.
template <class Finish>
void append_sections(IParam& root, TextBuffer& out, Finish finish) {
    std::string path; // of the section being written; cut back to its level's length
    WalkStack<TextLevel> levels;
    std::size_t start = out.size();
    append_section(root, path, out);
    finish(out, start);
    levels.emplace_back(CQZRef<IParam>::Share(&root), 0);
    while (!levels.empty()) {
        CQZRef<IParam> child;
        const char* const name = levels.back().next_child(child);
        if (name == nullptr) {
            levels.pop_back();
            continue;
        }
        if (!child) continue;
        path.resize(levels.back().path_length);
        path += '\\';
        path += name;
        start = out.size();
        append_section(*child, path, out);
        finish(out, start);
        levels.emplace_back(std::move(child), path.size());
    }
}

// Half a character at the end of a statement would make a whole one with the "|" behind it, and so take in
// the statement that follows.
std::string_view without_half_character(std::string_view statement, const LeadBytes& leads) {
    const char* const last = statement.data() + statement.size() - 1;
    if (leads(*last) && mb_is_start(statement.data(), last, leads)) statement.remove_suffix(1);
    return statement;
}

// Turns the section at the end of out, which begins with a line break and so with a new statement, into
// joined statements, in place: the line break leaves room for the last "|", and every other one takes the
// place of a separator that was read.
void join_statements(TextBuffer& out, std::size_t start) {
    const LeadBytes leads = lead_bytes();
    char* const begin = out.data() + start;
    char* to = begin;
    StatementReader reader(out.view().substr(start));
    std::string_view statement;
    while (reader.next(statement)) {
        statement = without_half_character(statement, leads);
        move_bytes(to, statement.data(), statement.size());
        to += statement.size();
        *to++ = '|';
    }
    out.cut(start + static_cast<std::size_t>(to - begin));
}

// Leaves out alone when there is no memory for its text.
bool assign_text(const char* text, CXString& out) {
    try {
        const CXString made(text);
        out = made;
        return true;
    } catch (const CXMemException&) {
        return false;
    }
}

} // namespace

void append_text_form(IParam& root, TextBuffer& out) {
    append_sections(root, out, [](TextBuffer&, std::size_t) {});
}

void append_statements(IParam& root, TextBuffer& out) { append_sections(root, out, join_statements); }

} // namespace qzr

int Param_Param2String(IParam* param, CXString& out) {
    if (param == nullptr) return 0;
    try {
        qzr::TextBuffer text;
        qzr::append_statements(*param, text);
        return qzr::assign_text(text.c_str(), out) ? 1 : 0;
    } catch (const std::bad_alloc&) {
        return 0;
    } catch (const std::length_error&) {
        return 0;
    }
}

int Param_String2Param(CXString& text, IParam* param) {
    if (param == nullptr) return 0;
    try {
        const CXString held(text); // whatever the tree does to the caller's string meanwhile
        qzr::read_text_form(held.GetData(), std::wstring(), *param);
        return 1;
    } catch (const std::bad_alloc&) {
        return 0;
    }
}
