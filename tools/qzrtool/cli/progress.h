// The library's progress sink, as a bar on standard error.
#pragma once

#include "qzprogress.h"
#include "system/interrupt.h"

namespace tool {

enum class ProgressChoice { automatic, always, never };

/// Counts bytes of long work, draws a bar, and ends the work on Ctrl-C. Storages that are wrapped with it ask
/// it after every transfer.
class Progress final : public qz::ConsoleBar {
public:
    /// Automatic: a bar on a console, once the work has taken half a second.
    static CQZRef<Progress> make(ProgressChoice choice, const char* what);

private:
    using qz::ConsoleBar::ConsoleBar;

    InterruptWatch watch_;
};

} // namespace tool
