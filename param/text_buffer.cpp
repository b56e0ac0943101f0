#include "param/text_buffer.h"

#include <algorithm>
#include <stdexcept>

namespace qzr {

namespace {

constexpr std::size_t kFirstRoom = 1024;

} // namespace

TextBuffer::TextBuffer() : bytes_(new char[kFirstRoom]), capacity_(kFirstRoom) {}

// One byte more than the longest text, for its terminator.
void TextBuffer::grow(std::size_t n) {
    if (n > kMostBytes + 1 - size_) throw std::length_error("a text beyond 2 GiB");
    const std::size_t capacity = std::min(std::max(2 * capacity_, size_ + n), kMostBytes + 1);
    std::unique_ptr<char[]> larger(new char[capacity]);
    std::memcpy(larger.get(), bytes_.get(), size_);
    bytes_ = std::move(larger);
    capacity_ = capacity;
}

} // namespace qzr
