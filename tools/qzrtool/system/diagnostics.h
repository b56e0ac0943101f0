// Where the work tells what its user should know although it goes on.
#pragma once

#include <string>

namespace tool {

class Diagnostics {
public:
    // @param place where: "FILE:LINE" or "FILE"
    virtual void warn(const std::string& place, const std::string& text) = 0;

    // Ends the work when there were warnings and the user wants none passed over. Called before anything is
    // shown or written.
    virtual void stop_if_strict() const = 0;

protected:
    ~Diagnostics() = default;
};

} // namespace tool
