// The library's progress bar on standard error, for the work of a command.
#pragma once

#include "system/progress.h"

namespace tool {

enum class ProgressChoice { automatic, always, never };

// Counts bytes of long work, draws a bar, and ends the work on Ctrl-C. Automatic: a bar on a console, once
// the work has taken half a second.
CQZRef<Progress> make_progress(ProgressChoice choice, const char* what);

} // namespace tool
