#include "progress.h"

#include "console.h"

#include <algorithm>

namespace tool {

namespace {

constexpr std::size_t kBarWidth = 30;
constexpr auto kPatience = std::chrono::milliseconds(500);
constexpr auto kInterval = std::chrono::milliseconds(100);

std::string amount(unsigned long long bytes) {
    constexpr unsigned long long kMebibyte = 1 << 20;
    if (bytes < kMebibyte) return std::to_string(bytes / 1024) + " KiB";
    return std::to_string(bytes / kMebibyte) + " MiB";
}

} // namespace

CQZRef<Progress> Progress::make(ProgressChoice choice, const char* what) {
    const bool shown = choice == ProgressChoice::always ||
                       (choice == ProgressChoice::automatic && is_terminal(StandardStream::error));
    const Clock::duration wait = choice == ProgressChoice::always ? Clock::duration::zero() : kPatience;
    return CQZRef<Progress>::Adopt(new Progress(shown, wait, what));
}

Progress::Progress(bool shown, Clock::duration wait, const char* what)
    : shown_(shown), what_(what), next_(Clock::now() + wait) {}

Progress::~Progress() {
    if (width_ != 0) write_standard(StandardStream::error, "\r" + std::string(width_, ' ') + "\r");
}

void Progress::begin(unsigned long long total) {
    done_ = 0;
    total_ = total;
    check();
}

void Progress::advance(unsigned long long bytes) { done_ += bytes; }

void Progress::check() {
    if (CheckCancel() != 0) throw CXException(QZERR_CANCELLED);
}

int Progress::CheckCancel() {
    if (shown_ && Clock::now() >= next_) draw();
    return InterruptWatch::asked() ? 1 : 0;
}

void Progress::draw() {
    next_ = Clock::now() + kInterval;
    std::string line = "\r" + what_ + " ";
    if (total_ != 0) {
        const unsigned long long done = std::min(done_, total_);
        const auto filled = static_cast<std::size_t>(kBarWidth * done / total_);
        line += "[" + std::string(filled, '#') + std::string(kBarWidth - filled, '.') + "] " +
                std::to_string(100 * done / total_) + " % of " + amount(total_);
    } else {
        line += amount(done_);
    }
    const std::size_t drawn = line.size() - 1;
    if (drawn < width_) line += std::string(width_ - drawn, ' ');
    width_ = std::max(width_, drawn);
    write_standard(StandardStream::error, line);
}

} // namespace tool
