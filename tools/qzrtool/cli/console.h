// Standard output in colours.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tool {

enum class ColorChoice { automatic, always, never };

/// What a piece of output is; on a terminal each has its colour.
enum class Style { plain, section, type, text, number, object, added, removed, changed, faint };

/// Collects what is printed and writes it to standard output in large pieces.
class Output {
public:
    /// Automatic: colours on a console, or when CLICOLOR_FORCE is set, unless NO_COLOR is.
    explicit Output(ColorChoice color);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void write(std::string_view text);
    void write(Style style, std::string_view text);

    /// Writes what is still held. Fails when standard output takes no more.
    void finish();

private:
    std::string held_;
    bool colored_;
    std::optional<unsigned long> console_mode_; // as it was, when it was changed
};

} // namespace tool
