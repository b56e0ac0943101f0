// This program, started once more.
#pragma once

#include <string>
#include <vector>

namespace tool {

/// Runs this program with arguments and waits for it. @return what it wrote to standard output. Fails when it
/// cannot be started.
std::string output_of_child(const std::vector<std::wstring>& arguments);

} // namespace tool
