#include "trees/values.h"

#include "system/encoding.h"

#include <charconv>
#include <initializer_list>

namespace tool {

namespace {

constexpr std::size_t kShownCharacters = 60;
constexpr std::size_t kShownBytes = 16;

/// The shortest text that reads back as the same number.
template <class Real>
std::string real_text(Real number) {
    char buffer[64];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, number).ptr;
    return std::string(buffer, end);
}

std::string number_text(double number) { return real_text(number); }
std::string number_text(long number) { return std::to_string(number); }

template <class Number>
std::string joined(std::initializer_list<Number> numbers) {
    std::string text;
    for (const Number number : numbers) {
        if (!text.empty()) text += ',';
        text += number_text(number);
    }
    return text;
}

std::string bool_text(int stored) {
    if (stored == 0) return "no";
    return stored == 1 ? "yes" : "yes (" + std::to_string(stored) + ")";
}

std::string object_text(IQZUnknown* object) {
    if (object == nullptr) return "none";
    const StoredObject stored = stored_object(object);
    if (stored.class_name.empty()) return "an object that cannot be stored";
    return utf8(stored.class_name.c_str()) + ", " + std::to_string(stored.bytes.size()) + " bytes";
}

std::string narrow_text(const tagQZVARIANT& value) {
    return value.pszVal != nullptr ? utf8(value.pszVal) : std::string();
}

std::string wide_text(const tagQZVARIANT& value) {
    return value.pwszVal != nullptr ? utf8(std::wstring_view(value.pwszVal)) : std::string();
}

std::string quoted(const std::string& text, bool full) {
    const std::size_t count = character_count(text);
    if (full || count <= kShownCharacters) return '"' + printable(text) + '"';
    return '"' + printable(first_characters(text, kShownCharacters)) + "...\" (" + std::to_string(count) +
           " characters)";
}

std::string blob_shown(const tagQZBLOB& blob, bool full) {
    if (blob.cbSize == 0) return "0 bytes";
    const bool whole = full || blob.cbSize <= kShownBytes;
    const std::string digits = hex_text(blob.pBlobData, whole ? blob.cbSize : kShownBytes);
    return digits + (whole ? "" : "... (" + std::to_string(blob.cbSize) + " bytes)");
}

} // namespace

std::string hex_text(const void* bytes, std::size_t count) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(2 * count);
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned byte = bytes != nullptr ? static_cast<const unsigned char*>(bytes)[i] : 0u;
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

std::string value_text(const tagQZVARIANT& v) {
    switch (v.vt) {
    case QZVT_EMPTY:
        return {};
    case QZVT_BOOL:
        return bool_text(v.boolVal);
    case QZVT_UCHAR:
        return std::to_string(v.ucharVal);
    case QZVT_USHORT:
        return std::to_string(v.ushortVal);
    case QZVT_ULONG:
        return std::to_string(v.ulongVal);
    case QZVT_INT:
        return std::to_string(v.intVal);
    case QZVT_UINT:
        return std::to_string(v.uintVal);
    case QZVT_LONG:
        return std::to_string(v.longVal);
    case QZVT_DOUBLE:
        return real_text(v.doubleVal);
    case QZVT_FLOAT:
        return real_text(v.floatVal);
    case QZVT_TEXT:
        return narrow_text(v);
    case QZVT_SIZE:
        return joined({v.sizeVal.cx, v.sizeVal.cy});
    case QZVT_RSIZE:
        return joined({v.rsizeVal.cx, v.rsizeVal.cy});
    case QZVT_POINT:
        return joined({v.pointVal.x, v.pointVal.y});
    case QZVT_RPOINT:
        return joined({v.rpointVal.x, v.rpointVal.y});
    case QZVT_RECT:
        return joined({v.rectVal.left, v.rectVal.top, v.rectVal.right, v.rectVal.bottom});
    case QZVT_RRECT:
        return joined({v.rrectVal.left, v.rrectVal.top, v.rrectVal.right, v.rrectVal.bottom});
    case QZVT_BLOB:
        return hex_text(v.blobVal.pBlobData, v.blobVal.cbSize);
    case QZVT_OBJECT:
        return object_text(v.pUnkVal);
    case QZVT_WTEXT:
        return wide_text(v);
    default:
        return {};
    }
}

std::string value_shown(const tagQZVARIANT& v, bool full) {
    switch (v.vt) {
    case QZVT_TEXT:
        return quoted(narrow_text(v), full);
    case QZVT_WTEXT:
        return quoted(wide_text(v), full);
    case QZVT_BLOB:
        return blob_shown(v.blobVal, full);
    case QZVT_OBJECT:
        return printable(object_text(v.pUnkVal));
    default:
        return value_text(v);
    }
}

} // namespace tool
