// Where texts grow. Whole trees are written in pieces of a few bytes, so appending one costs no call.
#pragma once

#include "core/move_bytes.h"

#include <cstddef>
#include <memory>
#include <string_view>

namespace qzr {

// A text below 2 GiB. Growing throws std::bad_alloc, or std::length_error when the text would get too long.
class TextBuffer {
public:
    static constexpr std::size_t kMostBytes = 0x7FFFFFFE;

    TextBuffer();

    std::size_t size() const { return size_; }
    char* data() { return bytes_.get(); }
    std::string_view view() const { return {bytes_.get(), size_}; }
    const char* c_str() {
        *room(1) = '\0';
        return bytes_.get();
    }

    // Room for n more bytes behind the text; added() makes what was written there part of it.
    char* room(std::size_t n) {
        if (n > capacity_ - size_) grow(n);
        return bytes_.get() + size_;
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

    std::unique_ptr<char[]> bytes_;
    std::size_t capacity_;
    std::size_t size_ = 0;
};

} // namespace qzr
