// A look at a compound file's tables before the platform follows them.
#pragma once

namespace qzr {

// Whether it is safe to let the platform open a file: not all of them notice sector numbers that run in
// circles or lead out of the tables, and they then hang or end the process. A file that cannot be read, or is
// none of these, is for the platform to judge and counts as safe. A file that was merely cut short is safe:
// what is left of it can be read.
bool has_safe_tables(const wchar_t* path);

} // namespace qzr
