/// @file
/// Files.
///
/// **Threads.** One file object is used by one thread at a time.
#pragma once

#include "qzunknown.h"

/// A file for reading, or for reading and writing in place. Positions and sizes are 32-bit: a file holds at
/// most 4 GiB - 1 bytes. Failures are thrown as CXFileException with the file's path.
class IXFile : public IQZUnknown {
public:
    virtual unsigned Read(void* buffer, unsigned count) = 0; ///< @return the bytes read, 0 at the end
    virtual void Write(const void* buffer, unsigned count) = 0;
    /// @param origin 0 from the start, 1 from the position, 2 from the end. @return the new position
    virtual unsigned Seek(unsigned offset, unsigned origin) = 0;
    virtual unsigned GetPosition() = 0;
    virtual int Flush() = 0; ///< @return non-zero on success

    // Typed reads throw (QZERR_EOF) when fewer bytes are left than the value has.
    virtual unsigned char ReadByte() = 0;
    virtual unsigned short ReadWord() = 0;
    virtual unsigned ReadDWord() = 0;
    virtual double ReadDouble() = 0;
    virtual void WriteByte(unsigned char value) = 0;
    virtual void WriteWord(unsigned short value) = 0;
    virtual void WriteDWord(unsigned value) = 0;
    virtual void WriteDouble(double value) = 0;
    virtual void WriteStringW(const wchar_t* text) = 0; ///< the text and its terminator
    virtual void WriteString(const char* text) = 0;     ///< the same for narrow text

    /// Reads a line of at most max characters; give room for max + 2. @return the characters read, the line
    /// feed not counted; 0 for an empty line and at the end of the file, which is no failure
    virtual int ReadLineW(wchar_t* buffer, int max) = 0;
    virtual int ReadLine(char* buffer, int max) = 0; ///< the same for narrow text

    virtual unsigned GetSize() = 0;
    virtual const wchar_t* GetName() = 0; ///< the path; it belongs to the file
    virtual ~IXFile() = default;
};

/// A file that is written safely: into a temporary file that takes the target's place on Commit alone.
/// The operations up to GetName are those of IXFile, in the same order.
class IXOutFile : public IQZUnknown {
public:
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
    virtual const wchar_t* GetName() = 0; ///< the target's path
    virtual void Commit() = 0;            ///< puts the contents in the target's place; once
    virtual ~IXOutFile() = default;
};
