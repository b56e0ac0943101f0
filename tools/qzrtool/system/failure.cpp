#include "system/failure.h"

#include <utility>

namespace tool {

void fail(std::string text) { throw Failure{std::move(text)}; }

} // namespace tool
