#include "trees/values.h"

#include "qzbytes.h"
#include "qzobject.h"
#include "qzref.h"

#include <cstring>
#include <cwchar>
#include <iterator>

namespace tool {

namespace {

constexpr ValueType kTypes[] = {
    {QZVT_EMPTY, 'e', "empty", "nothing", ValueClass::nothing},
    {QZVT_BOOL, 'f', "bool", "yes or no", ValueClass::number},
    {QZVT_UCHAR, 'b', "byte", "0 to 255", ValueClass::number},
    {QZVT_USHORT, 'w', "word", "0 to 65535", ValueClass::number},
    {QZVT_ULONG, 'W', "ulong", "0 to 4294967295", ValueClass::number},
    {QZVT_INT, 'i', "int", "-2147483648 to 2147483647", ValueClass::number},
    {QZVT_UINT, 'u', "uint", "0 to 4294967295", ValueClass::number},
    {QZVT_LONG, 'l', "long", "-2147483648 to 2147483647", ValueClass::number},
    {QZVT_DOUBLE, 'R', "double", "a 64-bit real", ValueClass::number},
    {QZVT_FLOAT, 'r', "float", "a 32-bit real", ValueClass::number},
    {QZVT_TEXT, 's', "text", "the text as it is", ValueClass::text},
    {QZVT_SIZE, 'z', "size", "WIDTH,HEIGHT", ValueClass::number},
    {QZVT_RSIZE, 'Z', "rsize", "WIDTH,HEIGHT, reals", ValueClass::number},
    {QZVT_POINT, 'p', "point", "X,Y", ValueClass::number},
    {QZVT_RPOINT, 'P', "rpoint", "X,Y, reals", ValueClass::number},
    {QZVT_RECT, 't', "rect", "LEFT,TOP,RIGHT,BOTTOM", ValueClass::number},
    {QZVT_RRECT, 'T', "rrect", "LEFT,TOP,RIGHT,BOTTOM, reals", ValueClass::number},
    {QZVT_BLOB, 'x', "blob", "hexadecimal digits", ValueClass::text},
    {QZVT_OBJECT, '\0', "object", nullptr, ValueClass::object},
    {QZVT_WTEXT, '\0', "wtext", "the text as it is, in 16-bit characters", ValueClass::text},
};
static_assert(std::size(kTypes) == QZVT_COUNT);

constexpr ValueType kUnknownType = {QZVT_COUNT, '\0', "unknown", nullptr, ValueClass::nothing};

template <class T>
bool same_text(const T* a, const T* b, std::size_t (*length)(const T*)) {
    static constexpr T kNothing[1] = {};
    if (a == nullptr) a = kNothing;
    if (b == nullptr) b = kNothing;
    const std::size_t size = length(a);
    return size == length(b) && std::memcmp(a, b, size * sizeof(T)) == 0;
}

bool same_blob(const tagQZBLOB& a, const tagQZBLOB& b) {
    if (a.cbSize != b.cbSize) return false;
    if (a.pBlobData == nullptr || b.pBlobData == nullptr) return a.pBlobData == b.pBlobData;
    return std::memcmp(a.pBlobData, b.pBlobData, a.cbSize) == 0;
}

bool same_object(IQZUnknown* a, IQZUnknown* b) {
    if (a == b) return true;
    const StoredObject first = stored_object(a);
    const StoredObject second = stored_object(b);
    return !first.class_name.empty() && first.class_name == second.class_name && first.bytes == second.bytes;
}

/// Bytes of the value field that a plain type uses.
std::size_t plain_size(unsigned short code) {
    switch (code) {
    case QZVT_EMPTY:
        return 0;
    case QZVT_UCHAR:
        return sizeof(unsigned char);
    case QZVT_USHORT:
        return sizeof(unsigned short);
    case QZVT_DOUBLE:
        return sizeof(double);
    case QZVT_SIZE:
    case QZVT_POINT:
        return sizeof(tagPOINT);
    case QZVT_RSIZE:
    case QZVT_RPOINT:
        return sizeof(tagRPOINT);
    case QZVT_RECT:
        return sizeof(tagRECT);
    case QZVT_RRECT:
        return sizeof(tagRRECT);
    default:
        return sizeof(int);
    }
}

} // namespace

std::span<const ValueType> value_types() { return kTypes; }

const ValueType& type_of(const tagQZVARIANT& value) {
    return value.vt < QZVT_COUNT ? kTypes[value.vt] : kUnknownType;
}

const ValueType* type_with_letter(char letter) {
    for (const ValueType& type : kTypes) {
        if (letter != '\0' && type.letter == letter) return &type;
    }
    return nullptr;
}

bool same_value(const tagQZVARIANT& a, const tagQZVARIANT& b) {
    if (a.vt != b.vt) return false;
    switch (a.vt) {
    case QZVT_TEXT:
        return same_text<char>(a.pszVal, b.pszVal, std::strlen);
    case QZVT_WTEXT:
        return same_text<wchar_t>(a.pwszVal, b.pwszVal, std::wcslen);
    case QZVT_BLOB:
        return same_blob(a.blobVal, b.blobVal);
    case QZVT_OBJECT:
        return same_object(a.pUnkVal, b.pUnkVal);
    default:
        return std::memcmp(&a.rrectVal, &b.rrectVal, plain_size(a.vt)) == 0;
    }
}

StoredObject stored_object(IQZUnknown* object) {
    StoredObject stored;
    const auto persistent = CQZRef<IPersistXStream>::Query(object);
    if (!persistent) return stored;
    const auto stream = qz::new_stream();
    persistent->Save(stream.Get());
    stored.class_name = persistent->GetClassName();
    stored.bytes = qz::bytes_of(*stream);
    return stored;
}

} // namespace tool
