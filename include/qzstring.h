/// @file
/// Strings: CXString, of multibyte characters in the process's multibyte code page, and CXStringW, of 16-bit
/// units. Both hold one pointer to a counted, copy-on-write block. A string that is made or assigned empty
/// owns no block; one that an operation leaves empty may keep the block of its former text, or of that
/// operation.
///
/// **Indices** count characters in CXString and units in CXStringW, as do lengths and positions; sizes count
/// bytes in CXString and units in CXStringW. A search that finds nothing answers -1. A lead byte right before
/// the end counts as a character of its own.
///
/// **Sizes are exact**: a block is allocated just as large as its operation needs, and nothing is kept in
/// reserve for the next one. What an operation needs is told where it is more than the result: the members
/// that find, trim, map case, format or load make their room before they know the result, and never give it
/// back.
///
/// **Failure.** CXMemException, also for texts that would pass 2 GiB; the string is then unchanged or empty.
/// Arguments may point into the string itself.
///
/// **Threads.** A string and all copies that share its block are used by one thread at a time; for another
/// thread make a string from GetData().
#pragma once

#include "qzexport.h"

#include <cstddef>

class CXStringW;

/// The narrow class: multibyte characters in the process's multibyte code page.
class QZR_API CXString {
public:
    CXString() noexcept;
    CXString(const CXString& other); ///< shares the block; copies one that GetBuffer has locked
    CXString(const char* text);      ///< null counts as ""
    CXString(const wchar_t* text);   ///< converts to the system's ANSI code page; null counts as L""
    virtual ~CXString();

    CXString& operator=(const CXString& other); ///< as the copy constructor; `s = s` does nothing
    CXString& operator=(const wchar_t* text);   ///< converts as the constructor does

    /// Strings on the heap are the library's: any module may delete what another has made.
    ///@{
    static void* operator new(std::size_t size);
    static void operator delete(void* p) noexcept;
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void*, void*) noexcept {}
    ///@}

    // ---- access and measurement

    unsigned GetLength() const;                         ///< @return characters
    unsigned GetSize() const;                           ///< @return bytes, terminator not counted
    unsigned GetSize(unsigned n) const;                 ///< @return bytes of the first n characters
    unsigned GetSize(unsigned start, unsigned n) const; ///< @return bytes of n characters from start on
    const char* GetData(unsigned i = 0) const; ///< @return character i on; past the end the terminator
    operator const char*() const { return m_pszData; } ///< the text; valid until the string changes
    /// @return character i, a double-byte one as (lead << 8) | trail; 0 at or past the end
    wchar_t GetAt(unsigned i) const;
    /// Makes room for n characters and hands out the block for writing; until ReleaseBuffer the string is
    /// not shared. A negative n counts as 0.
    char* GetBuffer(int n);
    void ReleaseBuffer(int unused = -1); ///< ends the writing; the text ends at its first zero
    int GetAllocSize() const;            ///< @return bytes of the block's text area, 0 without a block

    unsigned Copy(char* dst) const;             ///< copies all and a zero; @return bytes without the zero
    unsigned Copy(char* dst, unsigned n) const; ///< copies n characters at most and a zero; @return bytes
    /// Copies the longest prefix of whole characters that fits into size bytes with its zero.
    /// @return bytes copied, the zero not counted. With size 0 nothing is written.
    unsigned CopyFit(char* dst, unsigned size) const;

    /// Loads a string resource of a module, translated when translation is on, into room for 255 characters
    /// and two, or 256 more as often as that is too little. @return 1, or 0 when it is missing or empty (the
    /// string is then empty)
    int Load(void* hInstance, unsigned id);

    // ---- searching: the result is a character index or -1; an empty string always answers -1

    int Find(const char* s, int start = 0) const; ///< at character boundaries; an empty s matches at start
    int Find(wchar_t c, int start = 0) const;     ///< c as GetAt answers it
    int FindOnOf(const char* set, int start = 0) const; ///< first character that is one of set
    int FindRev(wchar_t c) const;                       ///< last occurrence
    int FindRevOnOf(const char* set) const;             ///< last character that is one of set

    /// Replaces the first occurrence only. Room for the whole text and repl is made first, whether find
    /// occurs or not. @return 1, or 0 when find does not occur
    ///@{
    int FindReplace(const char* find, const char* repl);
    int FindReplace(const char* find, wchar_t repl);
    int FindReplace(wchar_t find, const char* repl);
    int FindReplace(wchar_t find, wchar_t repl);
    ///@}

    // ---- comparing: negative, 0 or positive; s must not be null

    int Compare(const char* s) const;          ///< by characters
    int CompareI(const char* s) const;         ///< without regard to case
    int CompareN(const char* s, int n) const;  ///< the first n characters
    int CompareIN(const char* s, int n) const; ///< both

    // ---- editing
    //
    // A range is named by pos and count: pos below 0 or past the end means the end, a negative count the
    // characters before pos. Delete(5, -2) removes characters 3 and 4.

    CXString& Insert(int pos, const char* s); ///< before character pos; past the end, and below 0, appends
    CXString& Insert(int pos, wchar_t c);     ///< the same with one character
    CXString& Delete(int pos, int count);     ///< removes the range
    /// Replaces a range by s. It never deletes (an empty s changes nothing) nor inserts (nor does an empty
    /// range): use Delete and Insert.
    CXString& Replace(int pos, int count, const char* s);
    int Extract(int pos, int count);                      ///< keeps only the range; @return its bytes
    int Extract(int pos, int count, CXString& out) const; ///< copies the range to out; @return its bytes
    void TrimLeft();   ///< removes leading white space (isspace, byte by byte); makes room for the text and 2
    void TrimRight();  ///< removes trailing white space (isspace of a character's first byte); the same room
    void Upper();      ///< into upper case, by the process's locale; makes room for twice the text and 2
    void Lower();      ///< into lower case, by the process's locale; the same room
    void FreeExtra();  ///< does nothing; kept so that callers link
    void CharToOemA(); ///< does nothing; kept so that callers link
    void OemToCharA(); ///< does nothing; kept so that callers link

    /// Prints as the platform's printf does. The block has room for what the format lets expect (32 for an
    /// integer, 128 for a real, both no less than width and precision; a text as long as it is), or for the
    /// result where that is longer. A null "%s" prints "(null)". The format is trusted: never pass a text of
    /// foreign origin, nor "%n".
    void Format(const char* format, ...);
    void FormatV(const char* format, char* arguments); ///< arguments is a va_list

    // ---- paths: text alone, the file system is never asked

    CXString& AddDirDelim();             ///< appends "\" unless the text ends in "\" or "/"
    CXString& AddFileExtDelim();         ///< appends "." unless the text ends in one
    void ChangeFileExt(const char* ext); ///< replaces or adds the extension; a leading "." of ext is skipped
    CXString FileExt() const;            ///< @return the extension without its dot; empty when there is none
    CXString FileName() const;           ///< @return the name after the last of ":\/", extension included
    CXString FilePath() const;       ///< @return the part before that delimiter; a colon is kept. One byte
                                     ///< of its block is to spare.
    const char* GetFileExt() const;  ///< @return into the text, or null when there is no extension
    const char* GetFileName() const; ///< @return into the text
    /// Copies the extension. These three only measure with a null buffer; size the buffer by that.
    /// @return bytes without the zero
    int GetFileExt(char* buffer) const;
    int GetFileName(char* buffer) const; ///< the name without the extension, unlike FileName
    int GetFilePath(char* buffer) const; ///< 0 and nothing written when there is no delimiter

    /// Shortens a rooted path for display by replacing directories in its middle with "...\".
    /// @return 1 when it fits or was shortened (the last component stays whole even when it does not fit),
    ///         0 when the path has no drive or network root
    int ReducePathString(int maxLength);

protected:
    /// For classes derived from this one: the steps that the operations are made of. Counts are bytes.
    ///@{
    void Init();
    void AllocBuffer(unsigned n);
    void ReallocBuffer(unsigned n);
    void Release();
    void AssignCopy(const char* s, unsigned n);
    void ConcatCopy(const char* s, unsigned n);
    void ConcatCopyTo(unsigned pos, const char* s, unsigned n);
    void AssignChar(wchar_t c);
    ///@}

private:
    friend struct CXStringAccess; // the library's own way to the members above
    char* m_pszData;              // never null
};

/// @return both texts joined, in a block of exactly their size; null counts as "", a character has one or two
///         bytes
///@{
QZR_API CXString operator+(const CXString& a, const CXString& b);
QZR_API CXString operator+(const CXString& a, const char* b);
QZR_API CXString operator+(const char* a, const CXString& b);
QZR_API CXString operator+(const CXString& a, wchar_t b);
QZR_API CXString operator+(wchar_t a, const CXString& b);
///@}

/// Compares as CXString::Compare does; b must not be null.
///@{
inline bool operator==(const CXString& a, const CXString& b) { return a.Compare(b.GetData()) == 0; }
inline bool operator!=(const CXString& a, const CXString& b) { return a.Compare(b.GetData()) != 0; }
inline bool operator==(const CXString& a, const char* b) { return a.Compare(b) == 0; }
inline bool operator!=(const CXString& a, const char* b) { return a.Compare(b) != 0; }
///@}

/// The wide class. Where nothing is said a member does what its narrow twin does, in units. Null texts are
/// taken everywhere: they count as empty, or make the call do nothing; comparing with one answers 1. White
/// space is what iswspace says.
class QZR_API CXStringW {
public:
    CXStringW() noexcept;
    CXStringW(const CXStringW& other); ///< shares the block; copies one that GetBuffer has locked
    CXStringW(const char* text);       ///< converts by hostMultiByteToUnicode
    CXStringW(const wchar_t* text);    ///< copies
    virtual ~CXStringW();

    CXStringW& operator=(const CXStringW& other); ///< as the copy constructor; `s = s` does nothing

    /// Strings on the heap are the library's: any module may delete what another has made.
    ///@{
    static void* operator new(std::size_t size);
    static void operator delete(void* p) noexcept;
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void*, void*) noexcept {}
    ///@}

    /// As in CXString, in units.
    ///@{
    unsigned GetLength() const;
    unsigned GetSize() const;
    unsigned GetSize(unsigned n) const;
    unsigned GetSize(unsigned start, unsigned n) const;
    const wchar_t* GetData(unsigned i = 0) const;
    operator const wchar_t*() const { return m_pszData; }
    wchar_t GetAt(unsigned i) const;
    wchar_t* GetBuffer(int n);
    void ReleaseBuffer(int unused = -1);
    ///@}
    int GetAllocSize() const; ///< @return bytes, not units

    unsigned Copy(wchar_t* dst) const;                   ///< null answers 0
    unsigned Copy(wchar_t* dst, unsigned n) const;       ///< null answers 0
    unsigned CopyFit(wchar_t* dst, unsigned size) const; ///< size in units
    int Load(void* hInstance, unsigned id);              ///< as in CXString
    int FindI(const wchar_t* s) const; ///< from the start, without regard to case; an empty s answers -1

    /// As in CXString, by units.
    ///@{
    int Find(const wchar_t* s, int start = 0) const;
    int Find(wchar_t c, int start = 0) const;
    int FindOnOf(const wchar_t* set, int start = 0) const;
    int FindRev(wchar_t c) const;
    int FindRevOnOf(const wchar_t* set) const;
    int FindReplace(const wchar_t* find, const wchar_t* repl);
    int FindReplace(const wchar_t* find, wchar_t repl);
    int FindReplace(wchar_t find, const wchar_t* repl);
    int FindReplace(wchar_t find, wchar_t repl);
    ///@}

    int Compare(const wchar_t* s) const;          ///< by units, -1, 0 or 1
    int CompareI(const wchar_t* s) const;         ///< without regard to case
    int CompareN(const wchar_t* s, int n) const;  ///< the first n units
    int CompareIN(const wchar_t* s, int n) const; ///< both

    /// As in CXString, by units.
    ///@{
    CXStringW& Insert(int pos, const wchar_t* s);
    CXStringW& Insert(int pos, wchar_t c);
    CXStringW& Delete(int pos, int count);
    CXStringW& Replace(int pos, int count, const wchar_t* s);
    int Extract(int pos, int count);
    int Extract(int pos, int count, CXStringW& out) const;
    void TrimLeft();
    void TrimRight();
    void Upper();
    void Lower();
    void FreeExtra();
    void CharToOemA();
    void OemToCharA();
    ///@}

    void Format(const wchar_t* format, ...);              ///< as in CXString; "%s" takes wide text
    void FormatV(const wchar_t* format, char* arguments); ///< arguments is a va_list

    /// As in CXString, in units.
    ///@{
    CXStringW& AddDirDelim();
    CXStringW& AddFileExtDelim();
    void ChangeFileExt(const wchar_t* ext);
    CXStringW FileExt() const;
    CXStringW FileName() const;
    CXStringW FilePath() const;
    const wchar_t* GetFileExt() const;
    const wchar_t* GetFileName() const;
    int GetFileExt(wchar_t* buffer) const;
    int GetFileName(wchar_t* buffer) const;
    int GetFilePath(wchar_t* buffer) const;
    int ReducePathString(int maxLength);
    ///@}

protected:
    /// For classes derived from this one: the steps that the operations are made of. Counts are units.
    ///@{
    void Init();
    void AllocBuffer(unsigned n);
    void ReallocBuffer(unsigned n);
    void Release();
    void AssignCopy(const wchar_t* s, unsigned n);
    void ConcatCopy(const wchar_t* s, unsigned n);
    void ConcatCopyTo(unsigned pos, const wchar_t* s, unsigned n);
    ///@}

private:
    friend struct CXStringAccess;
    wchar_t* m_pszData;
};

/// @return both texts joined; null counts as empty
///@{
QZR_API CXStringW operator+(const CXStringW& a, const CXStringW& b);
QZR_API CXStringW operator+(const CXStringW& a, const wchar_t* b);
QZR_API CXStringW operator+(const wchar_t* a, const CXStringW& b);
QZR_API CXStringW operator+(const CXStringW& a, wchar_t b);
QZR_API CXStringW operator+(wchar_t a, const CXStringW& b);
///@}

/// Compares as CXStringW::Compare does.
///@{
inline bool operator==(const CXStringW& a, const CXStringW& b) { return a.Compare(b.GetData()) == 0; }
inline bool operator!=(const CXStringW& a, const CXStringW& b) { return a.Compare(b.GetData()) != 0; }
inline bool operator==(const CXStringW& a, const wchar_t* b) { return a.Compare(b) == 0; }
inline bool operator!=(const CXStringW& a, const wchar_t* b) { return a.Compare(b) != 0; }
///@}

/// Turns narrow text into wide text in the dictionary's code page (Supp_GetACP). A text that cannot be
/// converted gives the empty string. Throws CXMemException.
QZR_API void hostMultiByteToUnicode(const char* text, CXStringW& out);
