#include "cli/diagnostics.h"

#include "system/encoding.h"
#include "system/error_text.h"
#include "system/remote.h"
#include "system/standard_streams.h"

#include <exception>
#include <new>

namespace tool {

namespace {

constexpr unsigned kMostPrinted = 100;

struct StrictFailure : Failure {};

} // namespace

PrintedDiagnostics::~PrintedDiagnostics() {
    if (count_ > kMostPrinted) print_error(std::to_string(count_ - kMostPrinted) + " more warnings");
}

void PrintedDiagnostics::warn(const std::string& place, const std::string& text) {
    if (++count_ > kMostPrinted) return;
    print_error(place + ": warning: " + text);
}

void PrintedDiagnostics::stop_if_strict() const {
    if (!strict_ || count_ == 0) return;
    const char* warnings = count_ == 1 ? " warning" : " warnings";
    throw StrictFailure{{std::to_string(count_) + warnings + "; stopped because of --strict"}};
}

void print_error(const std::string& line) {
    write_standard(StandardStream::error, without_passwords(line) + "\n");
}

ExitCode report_current_exception() {
    const auto report = [](const std::string& text, ExitCode code = kTrouble) {
        print_error("qzrtool: " + text);
        return code;
    };
    try {
        throw;
    } catch (const StrictFailure& failure) {
        return report(failure.text, kStrict);
    } catch (const Failure& failure) {
        return report(failure.text);
    } catch (const CXFileException& e) {
        return report(file_error_text(e));
    } catch (const CXException& e) {
        if (e.GetCode() == QZERR_CANCELLED) return report("cancelled", kCancelled);
        return report(error_text(e));
    } catch (const CXString& system_message) {
        return report(utf8(system_message));
    } catch (const std::bad_alloc&) {
        return report(error_text(CXMemException()));
    } catch (const std::exception& e) {
        return report(e.what());
    }
}

} // namespace tool
