#include "cli/json.h"

#include <algorithm>

namespace tool {

namespace {

constexpr std::size_t kDeepestIndent =
    40; // keeps very deep trees from growing with the square of their depth

std::string quoted(std::string_view text) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string out = "\"";
    for (const char c : text) {
        const unsigned byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (byte < 0x20 || byte == 0x7F) {
            out += "\\u00";
            out += kDigits[byte >> 4];
            out += kDigits[byte & 15];
        } else {
            out += c;
        }
    }
    return out + '"';
}

} // namespace

void JsonWriter::new_line() {
    out_.write("\n");
    out_.write(std::string(2 * std::min(has_items_.size(), kDeepestIndent), ' '));
}

void JsonWriter::before_item() {
    if (after_key_) {
        after_key_ = false;
        return;
    }
    if (has_items_.empty()) return;
    if (has_items_.back()) out_.write(",");
    has_items_.back() = true;
    new_line();
}

void JsonWriter::begin(char bracket) {
    before_item();
    out_.write(std::string_view(&bracket, 1));
    has_items_.push_back(false);
}

void JsonWriter::end(char bracket) {
    const bool had_items = has_items_.back();
    has_items_.pop_back();
    if (had_items) new_line();
    out_.write(std::string_view(&bracket, 1));
}

void JsonWriter::key(std::string_view name) {
    before_item();
    out_.write(quoted(name));
    out_.write(": ");
    after_key_ = true;
}

void JsonWriter::text(std::string_view utf8_text) {
    before_item();
    out_.write(quoted(utf8_text));
}

void JsonWriter::raw(std::string_view token) {
    before_item();
    out_.write(token);
}

void JsonWriter::finish() { out_.write("\n"); }

} // namespace tool
