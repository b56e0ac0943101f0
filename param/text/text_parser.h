// Reading the text form into a tree.
#pragma once

#include <string>
#include <string_view>

class IParam;

namespace qzr {

// Adds what the text holds to a tree; what cannot be understood is left out silently.
// path: the full path of the file that the text comes from, against which "#include" resolves its names, or
// empty. Throws std::bad_alloc, CXMemException, and what the tree throws; what was read until then is kept.
void read_text_form(std::string_view text, const std::wstring& path, IParam& root);

} // namespace qzr
