// Warnings, failures, and the one place where exceptions become texts.
#pragma once

#include "qzexception.h"

#include <string>

namespace tool {

enum ExitCode {
    kOk = 0,
    kNo = 1,        // trees differ, a path is not there, or a copy could not hold everything
    kTrouble = 2,   // wrong use, or something failed
    kStrict = 3,    // there were warnings, and --strict was given
    kCancelled = 4, // ended by Ctrl-C
};

/// Ends the command.
struct Failure {
    ExitCode exit_code;
    std::string text; // UTF-8, without the program's name
};

[[noreturn]] void fail(std::string text);

/// Says what the user should know although the work goes on.
class Diagnostics {
public:
    explicit Diagnostics(bool strict) : strict_(strict) {}
    ~Diagnostics(); // says how many warnings were not printed
    Diagnostics(const Diagnostics&) = delete;
    Diagnostics& operator=(const Diagnostics&) = delete;

    /// Prints a warning; after a hundred of them it only counts.
    /// @param place where: "FILE:LINE" or "FILE"
    void warn(const std::string& place, const std::string& text);

    /// Ends the command when warnings were given and the user asked for --strict. Called before anything is
    /// written.
    void stop_if_strict() const;

private:
    bool strict_;
    unsigned count_ = 0;
};

/// @return what went wrong, without the name of the file
std::string error_text(const CXException& error);

/// Writes a line to standard error.
void print_error(const std::string& line);

/// Tells the exception that is being handled. @return the exit code. To be called in a catch block.
ExitCode report_current_exception();

} // namespace tool
