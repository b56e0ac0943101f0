/// @file
/// Files.
///
/// **Threads.** One file object is used by one thread at a time.
#pragma once

#include "qzunknown.h"

class CXStringW;

/// A file for reading, or for reading and writing in place. Positions and sizes are 32-bit numbers of bytes:
/// a file holds at most 4 GiB - 1. Failures are thrown as CXFileException with the file's path; on a local
/// file their operation is QZOP_READ, or QZOP_WRITE when it was opened with write.
class IXFile : public IQZUnknown {
public:
    /// @return the bytes read, less than count at the end, 0 when the position is there or further on
    virtual unsigned Read(void* buffer, unsigned count) = 0;

    /// Writes all count bytes at the position, or throws: QZERR_ACCESS when not opened with write,
    /// QZERR_DISK_FULL when the disk is full or the file would pass 4 GiB less 128 KiB (nothing is written
    /// then). A gap behind the old end reads as zeroes. A block of memory ignores it.
    virtual void Write(const void* buffer, unsigned count) = 0;

    /// Offsets, and positions that a seek leads to, count as signed numbers: what would be negative, or lie
    /// at 2 GiB or further on, is 0. Transfers go on beyond 2 GiB. Throws QZERR_SEEK for another origin, and
    /// behind the end unless opened with write.
    /// @param origin 0 from the start, 1 from the position, 2 from the end. @return the new position
    virtual unsigned Seek(unsigned offset, unsigned origin) = 0;

    /// Seek(0, 1): from 2 GiB on the answer is 0, and the position with it.
    virtual unsigned GetPosition() = 0;

    virtual int Flush() = 0; ///< hands mapped data to the system. @return non-zero on success

    /// Reads one value. Throws (QZERR_EOF, QZOP_READ) when fewer bytes are left than it has.
    ///@{
    virtual unsigned char ReadByte() = 0;
    virtual unsigned short ReadWord() = 0;
    virtual unsigned ReadDWord() = 0;
    virtual double ReadDouble() = 0;
    ///@}

    /// Writes one value, as Write does.
    ///@{
    virtual void WriteByte(unsigned char value) = 0;
    virtual void WriteWord(unsigned short value) = 0;
    virtual void WriteDWord(unsigned value) = 0;
    virtual void WriteDouble(double value) = 0;
    ///@}
    virtual void WriteStringW(const wchar_t* text) = 0; ///< the text and its terminator; null is empty
    virtual void WriteString(const char* text) = 0;     ///< the same for narrow text

    /// Reads up to and with a line feed, at most max characters. Behind the line the buffer holds the line
    /// feed, if there was room for it, and a zero; at the end of the file one character that was there before
    /// stands between: cut the line at the result. Give room for max + 2. A zero in the file is a character.
    /// @return the characters read, the line feed not counted; 0 for an empty line and at the end of the
    ///         file, which is no failure: compare positions
    virtual int ReadLineW(wchar_t* buffer, int max) = 0;
    virtual int ReadLine(char* buffer, int max) = 0; ///< the same for narrow text

    virtual unsigned GetSize() = 0;       ///< found by seeking to the end and back: 0 from 2 GiB on, see Seek
    virtual const wchar_t* GetName() = 0; ///< the path; it belongs to the file

    /// The last Release closes the file, and may throw what closing fails with (QZERR_MEMORY when a view or a
    /// mapping cannot be closed). Nothing is open then any more, and one more Release ends the object.
    /// Release a file that was written yourself: a CQZRef that goes has nobody to tell, and ends the program.
    virtual ~IXFile() = default;
};

/// A file that is written safely: into a temporary file that takes the target's place on Commit alone.
/// The operations up to GetName are those of IXFile, in the same order; failures name the temporary file. Its
/// Release throws nothing.
class IXOutFile : public IQZUnknown {
public:
    /// As in IXFile, on the temporary file.
    ///@{
    virtual unsigned Read(void* buffer, unsigned count) = 0;
    virtual void Write(const void* buffer, unsigned count) = 0;
    virtual unsigned Seek(unsigned offset, unsigned origin) = 0;
    virtual unsigned GetPosition() = 0;
    virtual int Flush() = 0;
    virtual unsigned char ReadByte() = 0;
    virtual unsigned short ReadWord() = 0;
    virtual unsigned ReadDWord() = 0;
    virtual double ReadDouble() = 0;
    virtual void WriteByte(unsigned char value) = 0;
    virtual void WriteWord(unsigned short value) = 0;
    virtual void WriteDWord(unsigned value) = 0;
    virtual void WriteDouble(double value) = 0;
    virtual void WriteStringW(const wchar_t* text) = 0;
    virtual void WriteString(const char* text) = 0;
    virtual int ReadLineW(wchar_t* buffer, int max) = 0;
    virtual int ReadLine(char* buffer, int max) = 0;
    virtual unsigned GetSize() = 0;
    ///@}
    virtual const wchar_t* GetName() = 0; ///< the target's path

    /// Puts the contents in the target's place: brings them to the disk, deletes the target, renames the
    /// temporary file. Once: further calls do nothing, other operations throw. Throws CXFileException; what
    /// was written is lost then, and the target as it was, unless it was deleted already and the temporary
    /// file could not be renamed: then the temporary file stays, complete, and the failure (QZOP_RENAME)
    /// names the target. docs/commit.md tells what a stopped program leaves behind.
    virtual void Commit() = 0;
    virtual ~IXOutFile() = default;
};

// ------------------------------------------------------------------------------------------------ opening

/// Bits of the open mode.
enum QZFileMode {
    QZFILE_READ = 0,
    QZFILE_WRITE = 0x1,    ///< open for reading and writing
    QZFILE_KEEP = 0x2,     ///< with write: keep what is there; for output files: start at the end of a copy
    QZFILE_RANDOM = 0x100, ///< access will be random rather than sequential
    QZFILE_TEMPORARY = 0x8000, ///< with write: the system deletes the file when it is closed
};

/// @return 1 when path starts with "fmem::", whatever the case: "fmem::ADDRESS,SIZE", both decimal, names a
///         block of this process's memory below 2 GiB, which its owner keeps alive; else 0, also for null
QZR_API int Fio_IsMemFile(const wchar_t* path);

/// Opens a file: a local one through memory-mapped views, a block of memory by its name, a remote one by its
/// URL (Fio_UrlOpen).
///
/// Opened for reading a file is shared with other readers and writers; with write no one else can open it
/// meanwhile. A mapped view faults when its medium vanishes (a network drive, a file cut short by others):
/// that is a structured exception of the system, not an exception of this library.
/// @param path less than 512 characters; null makes a unique temporary file ("QZPxxxx.tmp") in the system's
///             directory for such files, which stays unless QZFILE_TEMPORARY is given
/// @param mode bits of QZFileMode
/// @return the file with one reference; null when there is no memory for it. Throws CXFileException with
///         operation QZOP_READ, or QZOP_WRITE when opened with write; QZERR_DISK_FULL for a file of 4 GiB or
///         more; QZERR_SEEK (5) for a path under an exclusive lock.
QZR_API IXFile* Fio_Open(const wchar_t* path, int mode);

/// Opens a file for safe output: everything goes to a temporary file in the target's directory, which takes
/// the target's place on Commit. Released without Commit the target stays as it was. Meanwhile an existing
/// target has a shared lock (Fio_LockFile). A block of memory ignores what is written; a URL goes to
/// Fio_UrlOpenOut.
/// @param mode QZFILE_KEEP starts at the end of a copy of the target, QZFILE_RANDOM as above; write is always
///             meant
/// @return the file with one reference. Throws CXException QZERR_ACCESS when the target is not writable,
///         other codes when the directory takes no temporary file; CXFileException.
QZR_API IXOutFile* Fio_OpenOut(const wchar_t* path, int mode);

// -------------------------------------------------------------------------------------------- file system
//
// Paths are local ones, "fmem::" memory paths, which most of these accept and ignore, and URLs, which go to
// the functions of qzurl.h where there is one of that purpose and wait for the network then. Where nothing is
// said a memory path or a URL fails like any other name that the system does not know.
//
// Functions without a result throw CXFileException with the operation named; of two paths it carries the
// first. Queries answer 0 instead. Threads may call them at the same time, except for Fio_GetTempFileName and
// for the current directory, which is the process's.

/// Copies a file with its attributes. QZOP_COPY; QZERR_BAD_PATH when one of the paths is a memory path.
/// @param failIfExists non-zero refuses a dst that exists; 0 replaces it
QZR_API void Fio_CopyFile(const wchar_t* src, const wchar_t* dst, int failIfExists);

/// Creates a directory with every missing parent. Nothing happens when something of that name exists, and
/// with a null, an empty or a memory path. QZOP_CREATE_DIRECTORY, with the part of the path that failed.
QZR_API void Fio_CreateDirectory(const wchar_t* path);

QZR_API void Fio_DeleteDirectory(const wchar_t* path); ///< removes an empty directory; QZOP_REMOVE_DIRECTORY
/// Deletes a file; QZOP_DELETE. Of a memory path nothing happens, and of a URL no failure is told.
QZR_API void Fio_DeleteFile(const wchar_t* path);
/// Renames or moves a file; to must not exist. QZOP_RENAME; QZERR_BAD_PATH when one is a memory path.
QZR_API void Fio_RenameFile(const wchar_t* from, const wchar_t* to);

/// Never throws; the text is empty when the directory does not fit.
/// @param size places in the buffer; with 0 and less it is left alone
QZR_API void Fio_GetCurrentDirectory(wchar_t* buffer, int size);
QZR_API void Fio_SetCurrentDirectory(const wchar_t* path); ///< QZOP_CHANGE_DIRECTORY

/// What Fio_GetFileInfo tells. The time is that of the last write, in UTC; of a remote file as its server
/// lists it.
struct FioFileInfo {
    unsigned size;      ///< low 32 bits of the size in bytes
    unsigned second;    ///< 0 to 59
    unsigned minute;    ///< 0 to 59
    unsigned hour;      ///< 0 to 23
    unsigned day;       ///< of the month, from 1 on
    unsigned dayOfWeek; ///< 0 is Sunday
    unsigned month;     ///< 1 to 12
    unsigned year;      ///< with its century
};
static_assert(sizeof(FioFileInfo) == 32, "a record that crosses the boundary");

/// Looks a file or a directory up; wildcards name the first match. Of a memory path only the size is set, to
/// the second number of its name. QZOP_FILE_INFO.
/// @param info left alone on failure; null only looks whether there is such a file (not for URLs)
QZR_API void Fio_GetFileInfo(const wchar_t* path, FioFileInfo* info);

/// @return 1 when Fio_GetFileInfo succeeds, else 0; always 1 for a memory path
QZR_API int Fio_IsFileExist(const wchar_t* path);

/// @param owner receives the account that owns the file, a blank and its domain. @return 1, or 0 on failure
QZR_API int Fio_GetSecurityInfo(const wchar_t* path, CXStringW& owner);

/// @return 1 when the access rights let the calling process read and write the directory, else 0. No file is
///         made to find out, except in the directory of a URL.
QZR_API int Fio_IsWritableDir(const wchar_t* path);

/// @return 0 for a file with the read-only attribute, for one that cannot be opened for this process alone
///         (somebody has it open, or it is a directory), and for a path with an exclusive lock; else 1, also
///         for one that does not exist
QZR_API int Fio_IsWritableFile(const wchar_t* path);
QZR_API int Fio_IsWritableFile(const wchar_t* path, CXStringW& owner); ///< the same; owner is not filled

/// @return the path of a new, empty, unique file in the system's temporary directory; in a static buffer that
///         the next call overwrites. The file is the caller's to delete. Throws QZOP_OPEN. One thread at a
///         time.
QZR_API const wchar_t* Fio_GetTempFileName();

// ------------------------------------------------------------------------------------------ lock registry
//
// A process-wide list of locked paths. While a path has a lock nobody outside the library can open it for
// writing; the library's own files can be opened, unless the lock is exclusive, and share the path as they do
// without it. Paths match as written, case ignored; null, and paths of 512 units and more, take no part. Let
// one thread at a time take and give back locks; files may be opened on several meanwhile.

/// Takes one lock. Its failure, of a read-only file too, is not reported: Fio_LockCount tells. The first lock
/// of a path opens the file, for reading and writing and with others allowed to read; a shared lock on a
/// missing file is recorded without.
QZR_API void Fio_LockFile(const wchar_t* path, bool exclusive);

/// Gives one lock back; after the last one the file is closed. More of them than were taken do no harm.
QZR_API void Fio_UnlockFile(const wchar_t* path, bool exclusive);

QZR_API int Fio_LockCount(const wchar_t* path, bool exclusive); ///< @return locks of that kind, 0 for none

/// Lets go of a locked path's file handle (true) or takes it back (false); the counts stay. The library's
/// files do so while they are open. Taking back does nothing when the file is missing or does not open.
/// Throws CXFileException QZERR_SEEK (5), QZOP_OPEN, when it would let go of an exclusive lock.
QZR_API void Fio_ChangeNELock(const wchar_t* path, bool release);

/// Sets the switch by which memory paths take part in locking, 0 at first. With it on they are locked like
/// other paths: only when a file of that name exists. @return its old value
QZR_API int Fio_EnableLocking(int on);
