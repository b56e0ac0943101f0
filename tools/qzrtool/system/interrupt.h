// Ctrl-C, as a wish that long work looks for.
#pragma once

namespace tool {

/// While it lives, Ctrl-C does not end the process but asks the work to end. A second one ends the process.
class InterruptWatch {
public:
    InterruptWatch();
    ~InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;

    static bool asked();
};

} // namespace tool
