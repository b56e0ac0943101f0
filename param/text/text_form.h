// The text form of trees, written out.
#pragma once

#include "param/text/text_buffer.h"

class IParam;

namespace qzr {

// The form of files: a line for each node.
// Both append to out, and throw as growing does, CXIFaceException when a node gives no enumerator, and what
// the tree throws.
void append_text_form(IParam& root, TextBuffer& out);

// All on one line: the statements that reading the lines would find, each followed by "|".
void append_statements(IParam& root, TextBuffer& out);

} // namespace qzr
