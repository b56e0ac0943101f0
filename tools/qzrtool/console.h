// Standard output and standard error, as UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace tool {

/// Puts consoles into UTF-8 and standard output into binary mode, so that lines end in a line feed
/// everywhere.
void prepare_console();

enum class ColorChoice { automatic, always, never };

/// What a piece of output is; on a terminal each has its colour.
enum class Style { plain, section, type, text, number, object, added, removed, changed, faint };

/// Collects what is printed and writes it to standard output in large pieces.
class Output {
public:
    explicit Output(ColorChoice color);
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void write(std::string_view text);
    void write(Style style, std::string_view text);

    /// Writes what is still held. Fails when standard output takes no more.
    void finish();

private:
    std::string held_;
    bool colored_;
};

} // namespace tool
