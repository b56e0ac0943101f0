#include "qzcore.h"

#include <cstdio>

int main() {
    // A tree in memory. The holder gives its reference up by itself.
    const auto settings = qz::new_tree();
    qz::set(*settings, "View\\Grid\\Spacing", 12.5);
    qz::set(*settings, "View\\Grid\\Visible", true);

    // Its binary form, as files hold it, read into another tree.
    const std::string bytes = qz::bytes_of(*settings);
    const auto copy = qz::new_tree();
    qz::read_bytes(*copy, bytes);

    // A value by its path, with one to fall back on.
    const double spacing = qz::get(*copy, "View\\Grid\\Spacing", 10.0);
    std::printf("%g read back from %u bytes\n", spacing, static_cast<unsigned>(bytes.size()));

    // The text form of the whole tree.
    std::printf("%s\n", qz::text_of(*copy).c_str());
}
