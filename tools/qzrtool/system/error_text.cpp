#include "system/error_text.h"

#include "system/encoding.h"

#include <string_view>

namespace tool {

namespace {

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

std::string file_error_text(const CXFileException& error) {
    return printable(utf8(std::wstring_view(error.m_pszFileName))) + ": " +
           look_up(kOperations, error.m_nOperation, "operation") + ": " + error_text(error);
}

} // namespace tool
