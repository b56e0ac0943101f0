/// @file
/// Ready-made progress sinks: a function of one's own, a limit, a bar on the console. Header-only.
///
/// A sink is asked after each transfer of the stream or document storage it was given to. When it says stop,
/// the call that is under way throws CXException QZERR_CANCELLED; what was transferred stays transferred.
#pragma once

#include "qzref.h"
#include "qzstream.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <utility>

namespace qz {

/// A sink that asks a function; made by qz::progress.
template <class F>
class FunctionProgress final : public CQZUnknownImpl<QZRFC::IProgress> {
public:
    explicit FunctionProgress(F asked) : asked_(std::move(asked)) {} ///< takes the function over
    int CheckCancel() override { return asked_() ? 1 : 0; }          ///< asks the function

private:
    F asked_;
};

/// @param stop called without arguments after each transfer; true cancels. What it throws passes through the
///             library to whoever started the transfer.
/// @return a sink with that function
template <class F>
CQZRef<QZRFC::IProgress> progress(F stop) {
    return CQZRef<QZRFC::IProgress>::Adopt(new FunctionProgress<F>(std::move(stop)));
}

/// @return a sink that lets a number of transfers pass and cancels with the next, and with all that follow
inline CQZRef<QZRFC::IProgress> cancel_after(unsigned long long transfers) {
    return progress([transfers]() mutable { return transfers == 0 || transfers-- == 0; });
}

/// How a ConsoleBar looks and behaves.
struct BarOptions {
    std::string what;                              ///< stands in front of the bar
    bool shown = true;                             ///< false only counts, and asks stop
    std::chrono::milliseconds patience{500};       ///< work that ends sooner shows no bar
    std::chrono::milliseconds interval{100};       ///< at most so often the bar is drawn
    std::function<bool()> stop;                    ///< true cancels; may be empty
    std::function<void(const std::string&)> write; ///< where the bar is drawn; empty: standard error
};

/// A bar of 30 characters on one line of a console, "saving [######....] 60 % of 40 MiB", wiped out in the
/// end. Bytes are told to it by advance; transfers alone only bring it up to date.
class ConsoleBar : public CQZUnknownImpl<QZRFC::IProgress> {
public:
    /// @return a bar, which shows itself with the first check after its patience has ended
    static CQZRef<ConsoleBar> make(BarOptions options) {
        return CQZRef<ConsoleBar>::Adopt(new ConsoleBar(std::move(options)));
    }
    /// Wipes the bar out.
    ~ConsoleBar() override {
        try {
            if (width_ != 0) put("\r" + std::string(width_, ' ') + "\r");
        } catch (...) { // a bar that stays harms nobody
        }
    }

    /// Begins a part of the work, and checks. @param total in bytes, 0 when it is not known
    void begin(unsigned long long total) {
        done_ = 0;
        total_ = total;
        check();
    }
    void advance(unsigned long long bytes) { done_ += bytes; } ///< adds to what is done

    /// For work between transfers: as CheckCancel, but throws CXException QZERR_CANCELLED.
    void check() {
        if (CheckCancel() != 0) throw CXException(QZERR_CANCELLED);
    }
    /// Draws the bar when it is due, and asks whether to stop.
    int CheckCancel() override {
        if (options_.shown && Clock::now() >= next_) draw();
        return options_.stop && options_.stop() ? 1 : 0;
    }

protected:
    /// For make, and for classes derived from this one.
    explicit ConsoleBar(BarOptions options)
        : options_(std::move(options)), next_(Clock::now() + options_.patience) {}

private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::size_t kCells = 30;

    static std::string amount(unsigned long long bytes) {
        constexpr unsigned long long kMebibyte = 1 << 20;
        if (bytes < kMebibyte) return std::to_string(bytes / 1024) + " KiB";
        return std::to_string(bytes / kMebibyte) + " MiB";
    }

    void put(const std::string& text) const {
        if (options_.write) return options_.write(text);
        std::fputs(text.c_str(), stderr);
        std::fflush(stderr);
    }

    std::string line() const {
        if (total_ == 0) return options_.what + " " + amount(done_);
        const unsigned long long done = std::min(done_, total_);
        const auto filled = static_cast<std::size_t>(kCells * done / total_);
        return options_.what + " [" + std::string(filled, '#') + std::string(kCells - filled, '.') + "] " +
               std::to_string(100 * done / total_) + " % of " + amount(total_);
    }

    void draw() {
        next_ = Clock::now() + options_.interval;
        std::string drawn = line();
        const std::size_t width = drawn.size();
        if (width < width_) drawn.append(width_ - width, ' '); // over what is left of a longer line
        width_ = std::max(width_, width);
        put("\r" + drawn);
    }

    const BarOptions options_;
    unsigned long long done_ = 0, total_ = 0;
    Clock::time_point next_; // when the bar is drawn again
    std::size_t width_ = 0;  // of what is drawn
};

} // namespace qz
