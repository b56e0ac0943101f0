// Contexts: what stands in front of a text in the key of a translation that is meant for one resource only.
#pragma once

#include "core/windows_lean.h"
#include "qzstring.h"
#include "supp/translate.h"

namespace qzr {

// "file#kind#idээ": the file name of the module without its folder, the kind's number, and the resource's
// name or number (MAKEINTRESOURCE). The two letters are U+044D; narrow contexts end in the bytes FD instead,
// which are those letters in code page 1251 alone. A module that has no file name gives an empty one. The
// narrow one throws CXMemException.
WideHash resource_context(HINSTANCE module, ResourceKind kind, const wchar_t* id) noexcept;
WideHash resource_context(const wchar_t* file, ResourceKind kind, const wchar_t* id) noexcept;
CXString resource_context(HINSTANCE module, ResourceKind kind, const char* id);

// The file name of a module without its folder; a null module is the program.
CXStringW module_file_name(HINSTANCE module);

// The name of a resource as wide text; numbers as they are. `name` holds the text.
const wchar_t* wide_resource_name(const char* id, CXStringW& name);

} // namespace qzr
