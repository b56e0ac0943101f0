// Arguments such as text:settings.qzt, taken apart: which kind of tree, and where it is.
#pragma once

#include "formats/address.h"
#include "formats/kinds.h"

#include <string>

namespace tool {

// The address of a tree that is there. Without a kind in front of it the file's contents tell the kind, or
// its extension when it is empty. Fails when there is no such file.
Address source_address(const std::wstring& argument);

// The address of a tree to be written. Without a kind in front of it the extension tells the kind; failing
// that, the contents of the file that is there already.
Address target_address(const std::wstring& argument);

// FILE!PATH, where only a compound file makes sense; a "stor:" in front may be left out. The file need not
// be there.
Address compound_address(const std::wstring& argument);

} // namespace tool
