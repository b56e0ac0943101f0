// Changes one entry of a text file and leaves the rest of it, comments and layout included, as people wrote
// it.
#pragma once

#include "formats/address.h"
#include "trees/edit.h"

namespace tool {

/// Changes the file in the least intrusive way that, read back by the library, gives just the tree that is
/// wanted.
/// @param loaded the tree of the file; changed too. Fails, and leaves the file alone, when there is no such
/// way.
void edit_text_file(const Address& address, IParam& loaded, const Edit& edit);

} // namespace tool
