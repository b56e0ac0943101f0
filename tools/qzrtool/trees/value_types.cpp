#include "qzbytes.h"
#include "qzobject.h"
#include "qzref.h"
#include "trees/typed_value.h"
#include "trees/value_numbers.h"
#include "trees/value_text.h"
#include "trees/values.h"

#include <cstring>
#include <cwchar>
#include <iterator>

namespace tool {

namespace {

template <class T>
bool same_text(const T* a, const T* b, std::size_t (*length)(const T*)) {
    static constexpr T kNothing[1] = {};
    if (a == nullptr) a = kNothing;
    if (b == nullptr) b = kNothing;
    const std::size_t size = length(a);
    return size == length(b) && std::memcmp(a, b, size * sizeof(T)) == 0;
}

bool same_narrow(const tagQZVARIANT& a, const tagQZVARIANT& b) {
    return same_text<char>(a.pszVal, b.pszVal, std::strlen);
}

bool same_wide(const tagQZVARIANT& a, const tagQZVARIANT& b) {
    return same_text<wchar_t>(a.pwszVal, b.pwszVal, std::wcslen);
}

bool same_blob(const tagQZVARIANT& first, const tagQZVARIANT& second) {
    const tagQZBLOB &a = first.blobVal, &b = second.blobVal;
    if (a.cbSize != b.cbSize) return false;
    if (a.pBlobData == nullptr || b.pBlobData == nullptr) return a.pBlobData == b.pBlobData;
    return std::memcmp(a.pBlobData, b.pBlobData, a.cbSize) == 0;
}

bool same_object(const tagQZVARIANT& a, const tagQZVARIANT& b) {
    if (a.pUnkVal == b.pUnkVal) return true;
    const StoredObject first = stored_object(a.pUnkVal);
    const StoredObject second = stored_object(b.pUnkVal);
    return !first.class_name.empty() && first.class_name == second.class_name && first.bytes == second.bytes;
}

bool always_same(const tagQZVARIANT&, const tagQZVARIANT&) { return true; }

// The row of a type that is one number, or a record of equal ones.
template <auto Field, class Number>
constexpr ValueType number_type(unsigned short code, char letter, const char* name, const char* written_as) {
    using Type = NumberType<Field, Number>;
    constexpr auto kClass = std::is_integral_v<Number> ? ValueClass::integers : ValueClass::reals;
    return {code, letter, name, written_as, kClass, Type::text, nullptr, Type::parse, Type::same};
}

using V = tagQZVARIANT;
constexpr const char* kInt = "-2147483648 to 2147483647";
constexpr const char* kUnsigned = "0 to 4294967295";

constexpr ValueType kTypes[] = {
    {QZVT_EMPTY, 'e', "empty", "nothing", ValueClass::nothing, no_text, nullptr, parse_empty, always_same},
    {QZVT_BOOL, 'f', "bool", "yes or no", ValueClass::boolean, bool_text, nullptr, parse_bool,
     NumberType<&V::boolVal, int>::same},
    number_type<&V::ucharVal, unsigned char>(QZVT_UCHAR, 'b', "byte", "0 to 255"),
    number_type<&V::ushortVal, unsigned short>(QZVT_USHORT, 'w', "word", "0 to 65535"),
    number_type<&V::ulongVal, unsigned long>(QZVT_ULONG, 'W', "ulong", kUnsigned),
    number_type<&V::intVal, int>(QZVT_INT, 'i', "int", kInt),
    number_type<&V::uintVal, unsigned int>(QZVT_UINT, 'u', "uint", kUnsigned),
    number_type<&V::longVal, long>(QZVT_LONG, 'l', "long", kInt),
    number_type<&V::doubleVal, double>(QZVT_DOUBLE, 'R', "double", "a 64-bit real"),
    number_type<&V::floatVal, float>(QZVT_FLOAT, 'r', "float", "a 32-bit real"),
    {QZVT_TEXT, 's', "text", "the text as it is", ValueClass::text, narrow_text, narrow_shown, parse_narrow,
     same_narrow},
    number_type<&V::sizeVal, long>(QZVT_SIZE, 'z', "size", "WIDTH,HEIGHT"),
    number_type<&V::rsizeVal, double>(QZVT_RSIZE, 'Z', "rsize", "WIDTH,HEIGHT, reals"),
    number_type<&V::pointVal, long>(QZVT_POINT, 'p', "point", "X,Y"),
    number_type<&V::rpointVal, double>(QZVT_RPOINT, 'P', "rpoint", "X,Y, reals"),
    number_type<&V::rectVal, long>(QZVT_RECT, 't', "rect", "LEFT,TOP,RIGHT,BOTTOM"),
    number_type<&V::rrectVal, double>(QZVT_RRECT, 'T', "rrect", "LEFT,TOP,RIGHT,BOTTOM, reals"),
    {QZVT_BLOB, 'x', "blob", "hexadecimal digits", ValueClass::text, blob_text, blob_shown, parse_blob,
     same_blob},
    {QZVT_OBJECT, '\0', "object", nullptr, ValueClass::object, object_text, object_shown, nullptr,
     same_object},
    {QZVT_WTEXT, '\0', "wtext", "the text as it is, in 16-bit characters", ValueClass::text, wide_text,
     wide_shown, parse_wide, same_wide},
};
static_assert(std::size(kTypes) == QZVT_COUNT);

constexpr ValueType kUnknownType = {QZVT_COUNT,
                                    '\0',
                                    "unknown",
                                    nullptr,
                                    ValueClass::nothing,
                                    no_text,
                                    nullptr,
                                    nullptr,
                                    NumberType<&V::intVal, int>::same};

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

std::string value_text(const tagQZVARIANT& value) { return type_of(value).text(value); }

std::string value_shown(const tagQZVARIANT& value, bool full) {
    const ValueType& type = type_of(value);
    return type.shown != nullptr ? type.shown(value, full) : type.text(value);
}

bool same_value(const tagQZVARIANT& a, const tagQZVARIANT& b) {
    return a.vt == b.vt && type_of(a).same(a, b);
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
