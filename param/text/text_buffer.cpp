#include "param/text/text_buffer.h"
#include "qzexception.h"

#include <algorithm>
#include <new>
#include <stdexcept>

namespace qzr {

namespace {

constexpr std::size_t kFirstRoom = 1024;

} // namespace

// One byte more than the longest text, for its terminator.
void TextBuffer::grow(std::size_t n) {
    if (n > kMostBytes + 1 - size_) throw std::length_error("a text beyond 2 GiB");
    const std::size_t wanted = std::max({kFirstRoom, 2 * capacity_, size_ + n});
    const std::size_t capacity = std::min(wanted, kMostBytes + 1);
    try {
        bytes_.grow(capacity, size_);
    } catch (const CXMemException&) {
        throw std::bad_alloc();
    }
    capacity_ = capacity;
}

} // namespace qzr
