#include "cli/progress.h"

#include "qzprogress.h"
#include "system/interrupt.h"
#include "system/standard_streams.h"

#include <cstdlib>

namespace tool {

namespace {

// Whether somebody is looking: a console, or the environment says so.
bool is_watched() {
    const char* told = std::getenv("QZRTOOL_TERMINAL");
    return is_console(StandardStream::error) || (told != nullptr && *told != '\0');
}

qz::BarOptions bar_options(ProgressChoice choice, const char* what) {
    qz::BarOptions options;
    options.what = what;
    options.shown = choice == ProgressChoice::always || (choice == ProgressChoice::automatic && is_watched());
    if (choice == ProgressChoice::always) options.patience = options.patience.zero();
    options.stop = &InterruptWatch::asked;
    options.write = [](const std::string& text) { write_standard(StandardStream::error, text); };
    return options;
}

class Bar final : public Progress {
public:
    Bar(ProgressChoice choice, const char* what) : bar_(qz::ConsoleBar::make(bar_options(choice, what))) {}

    void begin(unsigned long long total) override { bar_->begin(total); }
    void advance(unsigned long long bytes) override { bar_->advance(bytes); }
    int CheckCancel() override { return bar_->CheckCancel(); }

private:
    CQZRef<qz::ConsoleBar> bar_;
    InterruptWatch watch_;
};

} // namespace

CQZRef<Progress> make_progress(ProgressChoice choice, const char* what) {
    return CQZRef<Progress>::Adopt(new Bar(choice, what));
}

} // namespace tool
