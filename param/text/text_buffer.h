// Where texts grow. Whole trees are written in pieces of a few bytes, so appending one costs no call.
#pragma once

#include "core/move_bytes.h"
#include "stream/block_storage.h"

#include <cstddef>
#include <string_view>

namespace qzr {

// A text below 2 GiB. Growing throws std::bad_alloc, or std::length_error when the text would get too long. A
// long one grows in place; one that moves to new pages each time costs a large tree a tenth more.
class TextBuffer {
public:
    static constexpr std::size_t kMostBytes = 0x7FFFFFFE;

    std::size_t size() const { return size_; }
    char* data() { return reinterpret_cast<char*>(bytes_.data()); }
    std::string_view view() const { return {reinterpret_cast<const char*>(bytes_.data()), size_}; }
    const char* c_str() {
        *room(1) = '\0';
        return data();
    }

    // Room for n more bytes behind the text; added() makes what was written there part of it.
    char* room(std::size_t n) {
        if (n > capacity_ - size_) grow(n);
        return data() + size_;
    }
    void added(std::size_t n) { size_ += n; }

    void append(char c) {
        *room(1) = c;
        ++size_;
    }
    void append(std::string_view text) {
        move_bytes(room(text.size()), text.data(), text.size());
        size_ += text.size();
    }
    void cut(std::size_t size) { size_ = size; } // not beyond size()

private:
    void grow(std::size_t n);

    BlockStorage bytes_;
    std::size_t capacity_ = 0;
    std::size_t size_ = 0;
};

} // namespace qzr
