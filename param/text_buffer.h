// Where texts grow. Whole trees are written in pieces of a few bytes, so appending one costs no call.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

namespace qzr {

// Moves n bytes; the areas may overlap. Up to 16 bytes, as most names and values are, it is two loads and two
// stores, the loads first.
inline void move_bytes(char* to, const char* from, std::size_t n) {
    const auto move_ends = [&](auto end) {
        auto last = end;
        std::memcpy(&end, from, sizeof end);
        std::memcpy(&last, from + n - sizeof last, sizeof last);
        std::memcpy(to, &end, sizeof end);
        std::memcpy(to + n - sizeof last, &last, sizeof last);
    };
    if (n > 16) {
        std::memmove(to, from, n);
    } else if (n >= 8) {
        move_ends(std::size_t{});
    } else if (n >= 4) {
        move_ends(unsigned{});
    } else if (n >= 2) {
        move_ends(static_cast<unsigned short>(0));
    } else if (n == 1) {
        *to = *from;
    }
}

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
