#include "cli/value_json.h"

#include "system/encoding.h"
#include "trees/values.h"

#include <algorithm>

namespace tool {

namespace {

// "inf" and "nan" are no numbers to JSON; all others are written without that letter.
void write_number(JsonWriter& json, std::string_view text) {
    if (text.find('n') == text.npos) {
        json.raw(text);
    } else {
        json.text(text);
    }
}

void write_numbers(JsonWriter& json, std::string_view text) {
    if (text.find(',') == text.npos) return write_number(json, text);
    json.begin_array();
    while (!text.empty()) {
        const std::size_t comma = std::min(text.find(','), text.size());
        write_number(json, text.substr(0, comma));
        text.remove_prefix(std::min(comma + 1, text.size()));
    }
    json.end_array();
}

void write_bool(JsonWriter& json, int stored) {
    json.raw(stored == 0 ? "false" : stored == 1 ? "true" : std::to_string(stored));
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

void write_value(JsonWriter& json, const tagQZVARIANT& value) {
    switch (type_of(value).value_class) {
    case ValueClass::nothing:
        return json.raw("null");
    case ValueClass::boolean:
        return write_bool(json, value.boolVal);
    case ValueClass::integers:
    case ValueClass::reals:
        return write_numbers(json, value_text(value));
    case ValueClass::text:
        return json.text(value_text(value));
    case ValueClass::object:
        return write_object(json, value.pUnkVal);
    }
}

} // namespace tool
