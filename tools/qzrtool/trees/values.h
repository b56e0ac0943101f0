// Values as people read and write them.
#pragma once

#include "qzvariant.h"

#include <span>
#include <string>
#include <string_view>

namespace tool {

// What kind of thing a value is.
enum class ValueClass { nothing, boolean, integers, reals, text, object };

struct TypedValue;

// One row for each type code.
struct ValueType {
    unsigned short code;
    char letter; // in the text form; 0 for a type without one
    const char* name;
    const char*
        written_as; // for people: what follows the colon on the command line; null when it cannot be typed
    ValueClass value_class;

    std::string (*text)(const tagQZVARIANT& value);
    std::string (*shown)(const tagQZVARIANT& value, bool full); // null: as text
    CQZVariant (*parse)(const TypedValue& typed);               // null when it cannot be typed
    bool (*same)(const tagQZVARIANT& a, const tagQZVARIANT& b);
};

/// @return the table's row; for a code beyond it a row that says so
const ValueType& type_of(const tagQZVARIANT& value);

/// All rows in the order of their codes.
std::span<const ValueType> value_types();

const ValueType* type_with_letter(char letter); // null when there is none

/// @return the whole value as one text in UTF-8: numbers without loss, bytes as hexadecimal digits
std::string value_text(const tagQZVARIANT& value);

/// @return the value for a line of a view: texts in quotes, and, unless full, long ones shortened
std::string value_shown(const tagQZVARIANT& value, bool full);

/// @return whether type and value are the same to the bit; objects when class and stored bytes are the same
bool same_value(const tagQZVARIANT& a, const tagQZVARIANT& b);

/// Reads TYPE:VALUE, with a type's name or letter. Fails with a message, also on a number that the type
/// cannot hold.
CQZVariant parse_value(const std::wstring& argument);

/// What an object writes of itself.
struct StoredObject {
    std::string class_name; // as stored; empty for a null object or one that cannot be stored
    std::string bytes;
};
StoredObject stored_object(IQZUnknown* object);

} // namespace tool
