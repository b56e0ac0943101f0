/// @file
/// Variants: one value of a small closed set of types. The plain record tagQZVARIANT crosses the boundary;
/// CQZVariant is a class over the same record, QZBlob one over the blob record.
///
/// **Ownership.** A variant owns its text, its blob bytes, and one reference of its interface. All of that is
/// made by the library's allocator (Mem_DefaultHeap) and freed by the library alone: QZVariantClear, or the
/// destructors.
///
/// **Threads.** Different variants may be used by different threads; one variant by one at a time.
#pragma once

#include "qzunknown.h"

class CXString;
class CXStringW;

/// Type codes, as found in tagQZVARIANT::vt and in stored files.
enum QZVariantType : unsigned short {
    QZVT_EMPTY = 0,
    QZVT_BOOL = 1,   ///< 32 bits, 0 or 1
    QZVT_UCHAR = 2,  ///< unsigned, 8 bits
    QZVT_USHORT = 3, ///< unsigned, 16 bits
    QZVT_ULONG = 4,  ///< unsigned long, 32 bits
    QZVT_INT = 5,    ///< int, 32 bits
    QZVT_UINT = 6,   ///< unsigned int, 32 bits
    QZVT_LONG = 7,   ///< long, 32 bits
    QZVT_DOUBLE = 8,
    QZVT_FLOAT = 9,
    QZVT_TEXT = 10,          ///< narrow text, owned
    QZVT_SIZE = 11,          ///< tagSIZE
    QZVT_RSIZE = 12,         ///< tagRSIZE
    QZVT_POINT = 13,         ///< tagPOINT
    QZVT_RPOINT = 14,        ///< tagRPOINT
    QZVT_RECT = 15,          ///< tagRECT
    QZVT_RRECT = 16,         ///< tagRRECT
    QZVT_BLOB = 17,          ///< tagQZBLOB, bytes owned
    QZVT_OBJECT = 18,        ///< IQZUnknown*, one reference owned
    QZVT_WTEXT = 19,         ///< wide text, owned
    QZVT_COUNT = 20,         ///< codes from here on are invalid
    QZVT_OBJECT_REF = 16384, ///< target of QZVariantChangeType only: the pointer without a reference
};

/// A real-valued point.
struct tagRPOINT {
    double x; ///< to the right
    double y; ///< downwards, or as the application counts
};
/// A real-valued size.
struct tagRSIZE {
    double cx; ///< the width
    double cy; ///< the height
};
/// A real-valued rectangle; the edges belong to it.
struct tagRRECT {
    double left;   ///< the smaller x
    double top;    ///< the smaller y
    double right;  ///< the larger x
    double bottom; ///< the larger y
};

/// Bytes with their count. {n, null} is legal: n bytes that are not there, written to streams as zeroes.
struct tagQZBLOB {
    unsigned cbSize; ///< in bytes
    void* pBlobData; ///< the bytes, or null
};

/// The variant record: a type code, and the value that the code names. A cleared record has code 0 and a
/// value of zero bytes.
struct tagQZVARIANT {
    unsigned short vt; ///< one of QZVariantType
    union alignas(8) {
        int boolVal;              ///< QZVT_BOOL: 0 or 1
        unsigned char ucharVal;   ///< QZVT_UCHAR
        unsigned short ushortVal; ///< QZVT_USHORT
        unsigned long ulongVal;   ///< QZVT_ULONG
        int intVal;               ///< QZVT_INT
        unsigned int uintVal;     ///< QZVT_UINT
        long longVal;             ///< QZVT_LONG
        double doubleVal;         ///< QZVT_DOUBLE
        float floatVal;           ///< QZVT_FLOAT
        char* pszVal;             ///< QZVT_TEXT, owned
        tagSIZE sizeVal;          ///< QZVT_SIZE
        tagRSIZE rsizeVal;        ///< QZVT_RSIZE
        tagPOINT pointVal;        ///< QZVT_POINT
        tagRPOINT rpointVal;      ///< QZVT_RPOINT
        tagRECT rectVal;          ///< QZVT_RECT
        tagRRECT rrectVal;        ///< QZVT_RRECT
        tagQZBLOB blobVal;        ///< QZVT_BLOB, bytes owned
        IQZUnknown* pUnkVal;      ///< QZVT_OBJECT, one reference owned
        wchar_t* pwszVal;         ///< QZVT_WTEXT, owned
    };
};

static_assert(sizeof(tagQZBLOB) == 16 && sizeof(tagQZVARIANT) == 40, "records that cross the boundary");

/// Zeroes the record without looking at it.
QZR_API void QZVariantInit(tagQZVARIANT* v);

/// Frees what the value owns and zeroes the record. A code of 20 or more owns nothing.
QZR_API void QZVariantClear(tagQZVARIANT* v);

/// Clears dst, then makes it an independent copy of src. Copying a record onto itself leaves it empty:
/// callers rely on that. Throws CXMemException, dst is then empty.
QZR_API void QZVariantCopy(tagQZVARIANT* dst, const tagQZVARIANT* src);

/// Converts src to the type vt into dst. dst and src may be one record.
///
/// Numbers convert among each other and to text; int, long, double and float are read from text by scanning
/// ("12abc" is 12), an unsigned int from wide text alone: narrow text is scanned as if it were wide, so "7"
/// is 7 and "12" is no number. An unsigned long is not read from text. Booleans become the texts "Yes" and
/// "No", and no text becomes a boolean. Integer and real geometry convert into each other, rounding d >= 0 as
/// d + 0.5 and d < 0 as d - 0.4999999, both cut; the right and bottom edges of rectangles move by 1 on the
/// way. A real becomes an int or a long by cutting, and one out of range, or not a number, becomes
/// 0x80000000. It becomes an unsigned int by cutting to 64 bits and keeping the lower 32, so that -1.0 is
/// 4294967295; out of the range of 64 bits, or not a number, it becomes 0. docs/variants.md has the whole
/// matrix.
/// @return 1; 0 when there is no such conversion: a dst of its own is then empty, and a record that was to be
///         converted in place is unchanged. Throws CXMemException.
QZR_API int QZVariantChangeType(tagQZVARIANT* dst, const tagQZVARIANT* src, unsigned short vt);

/// Clears out and fills it with a value of type vt found in plain memory. Text is duplicated, an interface
/// gets a reference; a blob record is taken over with its bytes, which must be the library's (made by
/// Mem_DefaultHeap).
/// @param value points at a field of the type: `int` for QZVT_INT, `char*` for QZVT_TEXT, tagQZBLOB ...
/// @return 1; 0 for code 0 and codes of 20 or more (the code stays in out)
QZR_API int QZVariantBindFromValue(unsigned short vt, void* value, tagQZVARIANT* out);

/// The inverse: writes src's value, read as if it were of type vt, into plain memory. The text that the field
/// holds is freed (it must be the library's, or null) and replaced by a duplicate, an interface that it holds
/// is released and replaced with a reference added; of a blob only the record is copied, and its bytes stay
/// src's. @return 1; 0 for code 0 and codes of 20 or more
QZR_API int QZVariantBindToValue(unsigned short vt, void* value, const tagQZVARIANT* src);

/// A blob that frees its bytes.
class QZR_API QZBlob : public tagQZBLOB {
public:
    QZBlob();                         ///< no bytes
    explicit QZBlob(unsigned long n); ///< n zero bytes. Throws CXMemException.
    QZBlob(const tagQZBLOB& source);  ///< a copy of its own; a null pointer is copied as null with its size
    QZBlob(const tagQZBLOB* source);  ///< the same
    QZBlob(const QZBlob& source);     ///< the same
    ~QZBlob();

    QZBlob& operator=(const tagQZBLOB* source); ///< copies; copying from its own record changes nothing
    QZBlob& operator=(const tagQZBLOB& source); ///< the same
    QZBlob& operator=(const QZBlob& source);    ///< the same

    void Clear(); ///< frees the bytes; size 0

    /// @return 1 when the sizes and the bytes are equal, else 0
    ///@{
    int operator==(const tagQZBLOB& other) const;
    int operator==(const tagQZBLOB* other) const;
    int operator==(const QZBlob& other) const;
    ///@}
};

/// A variant that clears itself. It adds nothing to the record.
///
/// Whole records copy as QZVariantCopy does: `v = v` leaves v empty. A variant's own text, blob or interface
/// assigned back to it keeps its value.
class QZR_API CQZVariant : public tagQZVARIANT {
public:
    CQZVariant(); ///< empty

    /// Copies the value.
    ///@{
    CQZVariant(const tagQZVARIANT& source);
    CQZVariant(const tagQZVARIANT* source);
    CQZVariant(const CQZVariant& source);
    CQZVariant(const tagQZBLOB& value);
    CQZVariant(const tagPOINT& value);
    CQZVariant(const tagSIZE& value);
    CQZVariant(const tagRECT& value);
    CQZVariant(const tagRPOINT& value);
    CQZVariant(const tagRSIZE& value);
    CQZVariant(const tagRRECT& value);
    CQZVariant(float value);
    CQZVariant(double value);
    ///@}

    /// Copies the text; null stays null and reads as the empty text.
    ///@{
    CQZVariant(const char* value);
    CQZVariant(const CXString& value);
    CQZVariant(const wchar_t* value);
    CQZVariant(const CXStringW& value);
    ///@}

    /// An integer. A vt of QZVT_BOOL makes a boolean (value != 0), any other the type of the argument.
    ///@{
    CQZVariant(unsigned char value, unsigned short vt = 0);
    CQZVariant(unsigned short value, unsigned short vt = 0);
    CQZVariant(int value, unsigned short vt = 0);
    CQZVariant(unsigned int value, unsigned short vt = 0);
    CQZVariant(long value, unsigned short vt = 0);
    CQZVariant(unsigned long value, unsigned short vt = 0);
    ///@}

    CQZVariant(IQZUnknown* value); ///< adds a reference; may be null

    ~CQZVariant();

    /// Copies the value, which decides the type.
    ///@{
    CQZVariant& operator=(const tagQZVARIANT& source);
    CQZVariant& operator=(const tagQZVARIANT* source);
    CQZVariant& operator=(const CQZVariant& source);
    CQZVariant& operator=(const tagQZBLOB& value);
    CQZVariant& operator=(const tagPOINT& value);
    CQZVariant& operator=(const tagSIZE& value);
    CQZVariant& operator=(const tagRECT& value);
    CQZVariant& operator=(const tagRPOINT& value);
    CQZVariant& operator=(const tagRSIZE& value);
    CQZVariant& operator=(const tagRRECT& value);
    CQZVariant& operator=(const char* value);
    CQZVariant& operator=(const CXString& value);
    CQZVariant& operator=(const wchar_t* value);
    CQZVariant& operator=(const CXStringW& value);
    CQZVariant& operator=(unsigned char value);
    CQZVariant& operator=(float value);
    CQZVariant& operator=(double value);
    ///@}

    /// Copies the value; a variant that holds a boolean stays one (value != 0).
    ///@{
    CQZVariant& operator=(unsigned short value);
    CQZVariant& operator=(int value);
    CQZVariant& operator=(unsigned int value);
    CQZVariant& operator=(long value);
    CQZVariant& operator=(unsigned long value);
    ///@}

    CQZVariant& operator=(IQZUnknown* value); ///< adds a reference; may be null

    /// Reads the member of the type asked for, whatever the code says: (unsigned char) of the int 300 is 44.
    /// Convert with ChangeType first when the type is not known. A text, an interface and a blob's bytes stay
    /// the variant's; no reference is added.
    ///@{
    operator unsigned char() const;
    operator unsigned short() const;
    operator int() const;
    operator unsigned int() const;
    operator long() const;
    operator unsigned long() const;
    operator float() const;
    operator double() const;
    operator char*() const;
    operator IQZUnknown*() const;
    operator tagQZBLOB() const;
    operator tagPOINT() const;
    operator tagSIZE() const;
    operator tagRECT() const;
    operator tagRPOINT() const;
    operator tagRSIZE() const;
    operator tagRRECT() const;
    ///@}

    /// The wide text. A variant of narrow text is turned into one of wide text on the spot, although the
    /// operator is const: never use it on a variant in read-only memory. Still the variant's text.
    operator wchar_t*() const;

    /// @return 1 when type and value are equal, else 0.
    ///
    /// Reals in points, sizes and rectangles are equal within 0.001; two NaN are equal; two empty rectangles
    /// are equal (a real one of zero width is not empty). Two oddities that callers rely on: of wide texts of
    /// equal length only the first half is compared, and a real size is equal to another only by way of its
    /// bytes read as integers, so a copied one normally differs from its source.
    ///@{
    int operator==(const tagQZVARIANT& other) const;
    int operator==(const tagQZVARIANT* other) const;
    int operator==(const CQZVariant& other) const;
    ///@}

    void Clear();                   ///< QZVariantClear
    void Attach(tagQZVARIANT& src); ///< takes src's value over; src is left with code 0
    tagQZVARIANT Detach();          ///< gives the value away: the caller clears the record

    /// Converts src, or this variant itself when src is null, to the type vt. @return 1 or 0, as
    /// QZVariantChangeType; 1 at once when the variant itself has that type
    int ChangeType(unsigned short vt, tagQZVARIANT* src = nullptr);
    int BindFromValue(unsigned short vt, void* value);     ///< QZVariantBindFromValue into this variant
    int BindToValue(unsigned short vt, void* value) const; ///< QZVariantBindToValue from this variant
};
