/// @file
/// What the library throws. All are thrown by value and caught by reference as a CXException; none derives
/// from std::exception, so a program catches both. docs/files.md tells which error of the system has which
/// code.
#pragma once

#include "qzexport.h"

/// Codes of CXException and of its relatives, as found in GetCode().
enum QZError : unsigned {
    QZERR_CANCELLED = 1,    ///< a progress sink asked to stop
    QZERR_MEMORY = 2,       ///< memory is exhausted
    QZERR_DISK_FULL = 3,    ///< the disk is full, or a file would pass 4 GiB - 1 bytes
    QZERR_EOF = 4,          ///< reading past the end
    QZERR_SEEK = 5,         ///< seeking out of range, a bad origin in a file, an exclusively locked path
    QZERR_NOT_FOUND = 6,    ///< no such file or element
    QZERR_BAD_PATH = 7,     ///< bad path or name
    QZERR_SHARING = 8,      ///< sharing or lock violation
    QZERR_ACCESS = 9,       ///< access denied, not writable
    QZERR_INTERFACE = 10,   ///< a required interface is missing; also: a second low-memory sink
    QZERR_SEEK_ORIGIN = 10, ///< a bad seek origin in a stream (as the code of a CXFileException)
    QZERR_OTHER = 11,       ///< any other failure of the system
    QZERR_DEVICE = 12,      ///< device or medium error
    QZERR_NETWORK = 13,     ///< network error
    QZERR_TOO_MANY = 14,    ///< too many open files
    QZERR_FORMAT = 15,      ///< unknown variant type in a stream; unlisted storage failure
    QZERR_LENGTH = 16,      ///< a stored object is longer than the rest of its stream
};

/// Numbers of the operations that a CXFileException names.
enum QZFileOperation : unsigned {
    QZOP_OPEN = 0,
    QZOP_READ = 1,
    QZOP_WRITE = 2,
    QZOP_SEEK = 3,
    QZOP_REMOVE_ELEMENT = 4,
    QZOP_DELETE = 7,
    QZOP_COPY = 8,
    QZOP_RENAME = 9,
    QZOP_CREATE_DIRECTORY = 10,
    QZOP_REMOVE_DIRECTORY = 11,
    QZOP_FILE_INFO = 12,
    QZOP_CHANGE_DIRECTORY = 14,
};

/// The root of the family: a code, and the module that raised it.
class QZR_API CXException {
public:
    /// @param code one of QZError, or a code of the application's own
    explicit CXException(unsigned code) noexcept;
    CXException(const CXException&) noexcept = default;            ///< copies
    CXException& operator=(const CXException&) noexcept = default; ///< copies
    virtual ~CXException();

    virtual unsigned GetCode() const; ///< @return the code it was made with

    /// For classes of the application that want to be told when a failure is shown to the user. Does
    /// nothing here, and the library's own classes leave it so.
    virtual void Report();

    unsigned m_nCode;    ///< the code it was made with
    HINSTANCE m_hModule; ///< this library's module, for loading message resources from
};

/// Memory is exhausted. The code is always QZERR_MEMORY.
class QZR_API CXMemException : public CXException {
public:
    CXMemException() noexcept;
    ~CXMemException() override;
};

/// A file, a stream or a storage failed.
///
/// The name is kept without allocating, in one of four static buffers that all threads share. The buffer is
/// given back by the destructor of any copy, so pass such an exception on with `throw;`, never by copying
/// it, or the name is lost. With four of them alive a fifth writes over the first one's name. A null or
/// empty name takes no buffer for good: the next exception gets the same one. Names are cut to the buffer
/// (QZR_EXCEPTION_NAME_UNITS with the terminator).
class QZR_API CXFileException : public CXException {
public:
    /// @param code      one of QZError
    /// @param operation one of QZFileOperation
    /// @param fileName  the file, stream or storage; null leaves the chosen buffer as it is
    CXFileException(unsigned code, unsigned operation, const wchar_t* fileName) noexcept;
    CXFileException(const CXFileException& other) noexcept; ///< shares the name
    /// Gives up its own name, whose buffer is free again when no other exception shows it, and shares the
    /// other's.
    CXFileException& operator=(const CXFileException& other) noexcept;
    ~CXFileException() override;

    const wchar_t* m_pszFileName; ///< never null; ends with a zero within the buffer
    unsigned m_nOperation;        ///< one of QZFileOperation
};

/// Units in each name buffer of CXFileException, terminator included.
enum { QZR_EXCEPTION_NAME_UNITS = 1024 };

/// An object lacks an interface that was required of it. The code is always QZERR_INTERFACE.
class QZR_API CXIFaceException : public CXException {
public:
    explicit CXIFaceException(const std::type_info& iid) noexcept;           ///< iid is what was asked for
    CXIFaceException(const CXIFaceException&) noexcept = default;            ///< copies
    CXIFaceException& operator=(const CXIFaceException&) noexcept = default; ///< copies
    ~CXIFaceException() override;

    const std::type_info* m_pIid; ///< the interface that was asked for
};

/// A typed or line read found no data left. The code is always QZERR_EOF.
class QZR_API CXEofException : public CXException {
public:
    CXEofException() noexcept;
    ~CXEofException() override;
};
