// The library's progress sink, as a bar on standard error.
#pragma once

#include "interrupt.h"
#include "qzref.h"
#include "qzstream.h"

#include <chrono>
#include <string>

namespace tool {

enum class ProgressChoice { automatic, always, never };

/// Counts bytes of long work, draws a bar, and ends the work on Ctrl-C. Storages that are wrapped with it ask
/// it after every transfer.
class Progress final : public CQZUnknownImpl<QZRFC::IProgress> {
public:
    /// Automatic: a bar on a console, once the work has taken half a second.
    static CQZRef<Progress> make(ProgressChoice choice, const char* what);
    ~Progress() override; // takes the bar away

    /// Begins a part of the work; total in bytes, 0 when it is not known.
    void begin(unsigned long long total);
    void advance(unsigned long long bytes);

    /// For work between transfers: draws, and throws QZERR_CANCELLED on Ctrl-C.
    void check();

    int CheckCancel() override; // draws as well

private:
    using Clock = std::chrono::steady_clock;

    Progress(bool shown, Clock::duration wait, const char* what);
    void draw();

    const bool shown_;
    const std::string what_;
    InterruptWatch watch_;
    unsigned long long done_ = 0, total_ = 0;
    Clock::time_point next_; // when the bar is drawn again
    std::size_t width_ = 0;  // of what is drawn
};

} // namespace tool
