// A small JSON writer.
#pragma once

#include "cli/console.h"

#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// Writes one JSON document to an output, a line for each member. The caller keeps begin and end in pairs.
class JsonWriter {
public:
    explicit JsonWriter(Output& out) : out_(out) {}

    void begin_object() { begin('{'); }
    void end_object() { end('}'); }
    void begin_array() { begin('['); }
    void end_array() { end(']'); }

    void key(std::string_view name);
    void text(std::string_view utf8_text);
    void raw(std::string_view token); // a number, true, false, null

    /// Ends the document.
    void finish();

private:
    void begin(char bracket);
    void end(char bracket);
    void before_item();
    void new_line();

    Output& out_;
    std::vector<bool> has_items_; // one for each open bracket
    bool after_key_ = false;
};

} // namespace tool
