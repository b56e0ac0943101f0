// The code page of the loaded dictionary, set when a dictionary names its language.
#pragma once

namespace qzr {

// 0 stands for the system's ANSI code page.
void set_dictionary_code_page(unsigned long code_page) noexcept;

} // namespace qzr
