// What is wrong with a dictionary.
#pragma once

#include "dictionary/wld_file.h"

#include <functional>

namespace tool {

/// Tells each problem with its line, in the order of the lines; line 0 is the file as a whole.
using WldReport = std::function<void(unsigned line, const std::string& problem)>;

void check_dictionary(const WldFile& file, const WldReport& report);

} // namespace tool
