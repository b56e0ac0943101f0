#include "cli/value_json.h"

#include "system/encoding.h"
#include "trees/values.h"

#include <charconv>
#include <cmath>
#include <initializer_list>

namespace tool {

namespace {

// The shortest text that reads back as the same number.
template <class Real>
std::string real_text(Real number) {
    char buffer[64];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, number).ptr};
}

void write_real(JsonWriter& json, double number, const std::string& text) {
    if (std::isfinite(number)) {
        json.raw(text);
    } else {
        json.text(text);
    }
}

void write_numbers(JsonWriter& json, std::initializer_list<long> numbers) {
    json.begin_array();
    for (const long number : numbers) {
        json.raw(std::to_string(number));
    }
    json.end_array();
}

void write_numbers(JsonWriter& json, std::initializer_list<double> numbers) {
    json.begin_array();
    for (const double number : numbers) {
        write_real(json, number, real_text(number));
    }
    json.end_array();
}

void write_object(JsonWriter& json, IQZUnknown* object) {
    if (object == nullptr) return json.raw("null");
    const StoredObject stored = stored_object(object);
    json.begin_object();
    json.key("class");
    json.text(utf8(stored.class_name.c_str()));
    json.key("size");
    json.raw(std::to_string(stored.bytes.size()));
    json.key("data");
    json.text(hex_text(stored.bytes.data(), stored.bytes.size()));
    json.end_object();
}

} // namespace

void write_value(JsonWriter& json, const tagQZVARIANT& v) {
    switch (v.vt) {
    case QZVT_EMPTY:
        return json.raw("null");
    case QZVT_BOOL:
        return json.raw(v.boolVal == 0 ? "false" : v.boolVal == 1 ? "true" : std::to_string(v.boolVal));
    case QZVT_DOUBLE:
        return write_real(json, v.doubleVal, value_text(v));
    case QZVT_FLOAT:
        return write_real(json, static_cast<double>(v.floatVal), value_text(v));
    case QZVT_SIZE:
        return write_numbers(json, {v.sizeVal.cx, v.sizeVal.cy});
    case QZVT_RSIZE:
        return write_numbers(json, {v.rsizeVal.cx, v.rsizeVal.cy});
    case QZVT_POINT:
        return write_numbers(json, {v.pointVal.x, v.pointVal.y});
    case QZVT_RPOINT:
        return write_numbers(json, {v.rpointVal.x, v.rpointVal.y});
    case QZVT_RECT:
        return write_numbers(json, {v.rectVal.left, v.rectVal.top, v.rectVal.right, v.rectVal.bottom});
    case QZVT_RRECT:
        return write_numbers(json, {v.rrectVal.left, v.rrectVal.top, v.rrectVal.right, v.rrectVal.bottom});
    case QZVT_TEXT:
    case QZVT_BLOB:
    case QZVT_WTEXT:
        return json.text(value_text(v));
    case QZVT_OBJECT:
        return write_object(json, v.pUnkVal);
    default:
        return json.raw(value_text(v)); // the integers
    }
}

} // namespace tool
