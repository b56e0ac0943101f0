#include "cli/diagnostics.h"

#include "cli/console.h"
#include "system/encoding.h"
#include "system/remote.h"

#include <exception>
#include <new>

namespace tool {

namespace {

constexpr unsigned kMostPrinted = 100;

struct NumberedText {
    unsigned number;
    const char* text;
};

constexpr NumberedText kCodes[] = {
    {QZERR_CANCELLED, "cancelled"},
    {QZERR_MEMORY, "not enough memory"},
    {QZERR_DISK_FULL, "the disk is full, or the file would be too large"},
    {QZERR_EOF, "the data end early"},
    {QZERR_SEEK, "a position out of range"},
    {QZERR_NOT_FOUND, "not found"},
    {QZERR_BAD_PATH, "a bad path or name"},
    {QZERR_SHARING, "in use by another program"},
    {QZERR_ACCESS, "access is denied"},
    {QZERR_INTERFACE, "an object lacks an interface that is needed"},
    {QZERR_DEVICE, "the device or medium failed"},
    {QZERR_NETWORK, "the network failed"},
    {QZERR_TOO_MANY, "too many open files"},
    {QZERR_FORMAT, "unknown type or format"},
    {QZERR_LENGTH, "a stored object is longer than the rest of its stream"},
};

constexpr NumberedText kOperations[] = {
    {QZOP_OPEN, "opening"},
    {QZOP_READ, "reading"},
    {QZOP_WRITE, "writing"},
    {QZOP_SEEK, "seeking"},
    {QZOP_REMOVE_ELEMENT, "removing an element"},
    {QZOP_DELETE, "deleting"},
    {QZOP_COPY, "copying"},
    {QZOP_RENAME, "renaming"},
    {QZOP_CREATE_DIRECTORY, "creating the directory"},
    {QZOP_REMOVE_DIRECTORY, "removing the directory"},
    {QZOP_FILE_INFO, "reading the attributes"},
    {QZOP_CHANGE_DIRECTORY, "changing the directory"},
};

template <std::size_t Count>
std::string look_up(const NumberedText (&table)[Count], unsigned number, const char* otherwise) {
    for (const NumberedText& row : table) {
        if (row.number == number) return row.text;
    }
    return otherwise + (" " + std::to_string(number));
}

} // namespace

std::string error_text(const CXException& error) { return look_up(kCodes, error.GetCode(), "error"); }

namespace {

std::string describe(const CXFileException& e) {
    return printable(utf8(std::wstring_view(e.m_pszFileName))) + ": " +
           look_up(kOperations, e.m_nOperation, "operation") + ": " + error_text(e);
}

} // namespace

void fail(std::string text) { throw Failure{kTrouble, std::move(text)}; }

Diagnostics::~Diagnostics() {
    if (count_ > kMostPrinted) print_error(std::to_string(count_ - kMostPrinted) + " more warnings");
}

void Diagnostics::warn(const std::string& place, const std::string& text) {
    if (++count_ > kMostPrinted) return;
    print_error(place + ": warning: " + text);
}

void Diagnostics::stop_if_strict() const {
    if (!strict_ || count_ == 0) return;
    throw Failure{kStrict, std::to_string(count_) + (count_ == 1 ? " warning" : " warnings") +
                               "; stopped because of --strict"};
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
    } catch (const Failure& failure) {
        return report(failure.text, failure.exit_code);
    } catch (const CXFileException& e) {
        return report(describe(e));
    } catch (const CXException& e) {
        if (e.GetCode() == QZERR_CANCELLED) return report("cancelled", kCancelled);
        return report(error_text(e));
    } catch (const CXString& system_message) {
        return report(utf8(system_message));
    } catch (const std::bad_alloc&) {
        return report(look_up(kCodes, QZERR_MEMORY, "error"));
    } catch (const std::exception& e) {
        return report(e.what());
    }
}

} // namespace tool
