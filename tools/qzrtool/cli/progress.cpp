#include "cli/progress.h"

#include "cli/console.h"

namespace tool {

CQZRef<Progress> Progress::make(ProgressChoice choice, const char* what) {
    qz::BarOptions options;
    options.what = what;
    options.shown = choice == ProgressChoice::always ||
                    (choice == ProgressChoice::automatic && is_terminal(StandardStream::error));
    if (choice == ProgressChoice::always) options.patience = options.patience.zero();
    options.stop = &InterruptWatch::asked;
    options.write = [](const std::string& text) { write_standard(StandardStream::error, text); };
    return CQZRef<Progress>::Adopt(new Progress(std::move(options)));
}

} // namespace tool
