/// @file
/// Byte streams and storages.
///
/// **Threads.** One stream or storage is used by one thread at a time.
#pragma once

#include "qzunknown.h"

struct tagQZVARIANT;

/// A sequential, seekable stream of bytes. Positions, sizes and counts are 32-bit: a stream holds at most
/// 4 GiB - 1 bytes. Numbers are stored little-endian.
///
/// Failures are thrown: CXFileException with the stream's name, CXEofException (QZERR_EOF) when a typed or
/// line read finds no data, CXException QZERR_CANCELLED when a progress sink asks to stop (after the
/// transfer), CXMemException.
class IXStream : public IQZUnknown {
public:
    /// Reads up to count bytes. @return the number read; 0 at the end, which is no failure
    virtual unsigned Read(void* buffer, unsigned count) = 0;

    /// Writes count bytes at the position. @return of no use; failures throw
    virtual int Write(const void* buffer, unsigned count) = 0;

    /// Moves the position. @param origin 0 from the start, 1 from the position, 2 from the end; any other
    /// throws CXFileException (QZERR_SEEK_ORIGIN, QZOP_SEEK). A memory stream stays between 0 and its size.
    /// @return the new position
    virtual unsigned Seek(int offset, unsigned origin) = 0;

    virtual unsigned GetPosition() = 0; ///< @return the current position

    /// Reads one value. Throws CXEofException when nothing is left; of a value that the end cuts short the
    /// missing bytes are zero.
    ///@{
    virtual unsigned char ReadByte() = 0;
    virtual unsigned short ReadWord() = 0;
    virtual unsigned ReadDWord() = 0;
    virtual double ReadDouble() = 0;
    ///@}

    /// Reads up to and including a line feed or a zero, at most max characters, and puts a zero behind the
    /// place after the last one: with n characters read before the stop, buffer[n] is the stop character and
    /// buffer[n + 1] the zero. When max characters came without a stop, buffer[max] is left as it was and
    /// buffer[max + 1] becomes zero: give room for max + 2, zeroed.
    /// @return the number of characters with the stop (max + 1 when there was none; 1 when max <= 0).
    /// Throws CXEofException when the stream ends before the stop.
    virtual int ReadLineW(wchar_t* buffer, int max) = 0;
    virtual int ReadLine(char* buffer, int max) = 0; ///< the same for narrow text

    /// Reads one variant. @param v cleared first. @return 1 when the last read of its value brought
    /// anything, else 0. Throws CXFileException (QZERR_FORMAT, QZOP_READ) for an unknown type code (v is then
    /// empty), CXMemException for a blob that claims 64 MiB more than the stream holds, and what
    /// ReadObjectFromXStream throws.
    virtual int ReadVariant(tagQZVARIANT* v) = 0;

    /// Writes one variant: its code (16 bits), then its value. Memory streams write only the first half of
    /// the bytes of a wide text, which does not read back whole; stored files rely on that.
    virtual int WriteVariant(const tagQZVARIANT* v) = 0;

    /// Writes one value.
    ///@{
    virtual void WriteByte(unsigned char value) = 0;
    virtual void WriteWord(unsigned short value) = 0;
    virtual void WriteDWord(unsigned value) = 0;
    virtual void WriteDouble(double value) = 0;
    ///@}
    virtual void WriteStringW(const wchar_t* text) = 0; ///< the text and its terminator, no count
    virtual void WriteString(const char* text) = 0;     ///< the same for narrow text

    virtual unsigned GetSize() = 0;       ///< @return the length in bytes
    virtual const wchar_t* GetName() = 0; ///< @return a name for messages; it belongs to the stream

    virtual ~IXStream() = default;
};

/// The block behind a memory stream; query the stream for `typeid(IMemBlock)`.
class IMemBlock : public IQZUnknown {
public:
    virtual unsigned GetSize() = 0; ///< @return the bytes in use
    virtual void* GetData() = 0;    ///< @return the block, null when there is none; valid until it next grows

    /// Replaces the block by one of exactly length bytes, copied from data or zero when data is null. The
    /// stream's position stays, even past the new end: reading there gives 0, writing leaves a gap of zeroes.
    /// Throws CXMemException.
    virtual void SetData(const void* data, unsigned length) = 0;

protected:
    ~IMemBlock() = default;
};

namespace QZRFC {

/// An application's progress sink.
class IProgress : public IQZUnknown {
public:
    /// Called after each transfer. @return non-zero to cancel the running operation
    virtual int CheckCancel() = 0;

protected:
    ~IProgress() = default;
};

} // namespace QZRFC

/// Makes a stream in memory. Its positions and sizes count as signed numbers: from 2 GiB on every Seek ends
/// at the end and nothing is read, so that it can only be appended to.
/// @return a new, empty stream with one reference for the caller; null when there is no memory
QZR_API IXStream* new_StreamOnMemory();

/// The same with a progress sink, asked after every transfer. @param progress gets a reference; may be null
QZR_API IXStream* new_StreamOnMemory(QZRFC::IProgress* progress);

/// @return a stream that swallows what is written and reads as zeroes: every Read fills the buffer and
///         answers 1, the size is always 1, lines are empty (answer 1), variants empty. Null without memory.
QZR_API IXStream* new_EmptyStream();

/// A container of named child storages and streams, in the platform's compound-file format. Element names are
/// narrow text in the system's ANSI code page, cut at 511 characters; the platform takes up to 31, case does
/// not matter to it, and a storage and a stream cannot have the same name. Everything is opened exclusively:
/// an element that is open does not open again.
///
/// Whatever is opened carries a reference for the caller. A child storage holds its parent. A stream does
/// not: when its storage goes first, every operation on the stream throws. docs/storage-form.md tells when
/// changes reach the file.
class IXStorage : public IQZUnknown {
public:
    virtual IXStorage* CreateStorage(const char* name) = 0; ///< replaces an element of that name; throws
    virtual IXStorage* OpenStorage(const char* name) = 0;   ///< throws; QZERR_NOT_FOUND when missing
    virtual void DestroyStorage(const char* name) = 0;      ///< throws (QZOP_REMOVE_ELEMENT)
    virtual IXStorage* GetParent() = 0;                     ///< with a reference; null for a root
    virtual CTEnum<const char*>* EnumStorages() = 0;        ///< names of the child storages, with a reference
    virtual IXStream* CreateStream(const char* name) = 0;   ///< replaces an element; null on failure
    virtual IXStream* OpenStream(const char* name) = 0;     ///< null on failure
    virtual void DestroyStream(const char* name) = 0;       ///< throws (QZOP_REMOVE_ELEMENT)
    virtual int Commit() = 0; ///< makes the changes last. @return 0, or the platform's negative result
    virtual CTEnum<const char*>* EnumStreams() = 0; ///< names of the child streams, with a reference
    virtual const wchar_t* GetName() = 0;           ///< the path; it belongs to the storage
    virtual ~IXStorage() = default;
};

/// Bits of the storage mode.
enum QZStorageMode {
    QZSTORAGE_READ_ONLY = 0x1,
    QZSTORAGE_TRANSACTED = 0x2,        ///< changes reach the file on Commit, or at the last Release
    QZSTORAGE_TEMPORARY = 0x4,         ///< the path is not used: a unique temporary file is made
    QZSTORAGE_DELETE_ON_RELEASE = 0x8, ///< the file goes with the storage
};

/// Creates a compound file, replacing one that exists and creating its directory.
/// @param path null makes it in memory, or in a temporary file with QZSTORAGE_TEMPORARY
/// @param mode bits of QZStorageMode. QZSTORAGE_READ_ONLY always throws: the platform refuses it.
/// @return the root storage with one reference. Throws CXFileException (QZOP_OPEN) with the path.
QZR_API IXStorage* new_Storage(const wchar_t* path, int mode);

/// Opens a compound file; nobody else can meanwhile. A URL goes to open_UrlStorage (qzurl.h).
/// @param mode 0 for reading and writing, transacted; anything else for reading only
/// @return the root storage with one reference. Throws CXFileException; QZERR_NOT_FOUND when missing,
///         QZERR_FORMAT when it is none, or so damaged that the platform could hang on it or end the process.
///
/// A writable storage that is released without Commit is committed all the same; that commit fails silently.
QZR_API IXStorage* open_Storage(const wchar_t* path, int mode);

/// Wraps a platform storage (IStorage*), adding a reference to it. Throws CXFileException.
QZR_API IXStorage* new_StorageByOleStorage(void* platformStorage);
/// Wraps a platform stream (IStream*), adding a reference to it. @return null when there is no memory
QZR_API IXStream* new_StreamByOleStream(void* platformStream);
/// @return the platform's IStorage* behind a storage of this library, with a reference; null for others
QZR_API void* Storage_GetOLEStorage(IXStorage* storage);
/// @return the platform's IStream* behind a stream of this library, with a reference; null for others
QZR_API void* Stream_GetOLEStream(IXStream* stream);

/// What a stream of a document knows of its document; query the stream for `typeid(IDocStrorageInfo)` (the
/// spelling is the contract's own). The getters store a pointer with one reference and answer 1, or null and
/// 0 when the stream belongs to no document. The reserved ones answer 0.
class IDocStrorageInfo : public IQZUnknown {
public:
    virtual int GetStorage(IXStorage** out) = 0;    ///< the storage that the top document storage wraps
    virtual int Reserved2() = 0;                    ///< @return 0
    virtual int GetDocStorage(IXStorage** out) = 0; ///< the top document storage itself
    virtual int Reserved4() = 0;                    ///< @return 0
    virtual int GetRawStream(IXStream** out) = 0;   ///< the stream that this one wraps
    virtual int Reserved6() = 0;                    ///< @return 0
    virtual unsigned GetFlags() = 0;                ///< the document's flags

protected:
    ~IDocStrorageInfo() = default;
};

/// Wraps a storage so that every transfer on any stream inside asks a progress sink whether to go on; a
/// cancel throws CXException QZERR_CANCELLED after the transfer and closes nothing.
/// @param flags handed on to every storage and stream inside, and to IDocStrorageInfo
/// @param out   receives the top document storage with one reference; null without memory. @return 1
QZR_API int new_CIXDocStorage(IXStorage* storage, QZRFC::IProgress* progress, IXStorage** out, int flags);

/// Wraps a stream as one of a document.
/// @param docStorage made by new_CIXDocStorage; with any other the stream has no document and checks nothing
/// @param out        receives the stream with one reference; null without memory. @return 1
QZR_API int new_CIXDocStream(IXStorage* docStorage, IXStream* stream, IXStream** out, int flags);
