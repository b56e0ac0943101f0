// Warnings and failures as the command line tells them, and the one place where exceptions become exit codes.
#pragma once

#include "system/diagnostics.h"
#include "system/failure.h"

#include <string>

namespace tool {

enum ExitCode {
    kOk = 0,
    kNo = 1,        // trees differ, a path is not there, or a copy could not hold everything
    kTrouble = 2,   // wrong use, or something failed
    kStrict = 3,    // there were warnings, and --strict was given
    kCancelled = 4, // ended by Ctrl-C
};

// Prints warnings on standard error; after a hundred of them it only counts.
class PrintedDiagnostics final : public Diagnostics {
public:
    explicit PrintedDiagnostics(bool strict) : strict_(strict) {}
    ~PrintedDiagnostics(); // says how many warnings were not printed
    PrintedDiagnostics(const PrintedDiagnostics&) = delete;
    PrintedDiagnostics& operator=(const PrintedDiagnostics&) = delete;

    void warn(const std::string& place, const std::string& text) override;
    void stop_if_strict() const override; // strict: with --strict

private:
    bool strict_;
    unsigned count_ = 0;
};

/// Writes a line to standard error.
void print_error(const std::string& line);

/// Tells the exception that is being handled. @return the exit code. To be called in a catch block.
ExitCode report_current_exception();

} // namespace tool
