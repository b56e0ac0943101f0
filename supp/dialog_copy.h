// The bytes of a dialog template that is being written.
#pragma once

#include "core/allocator.h"
#include "string/scan.h"
#include "supp/wide_block.h"

#include <cstddef>
#include <cstring>

namespace qzr {

// Grows at its end. Templates of the usual size lie in the object itself, so that writing one allocates
// nothing. They begin on an 8-byte boundary.
class DialogCopy {
public:
    DialogCopy() noexcept {} // leaves the bytes as they are
    ~DialogCopy() {
        if (data_ != usual_) mem_free(data_);
    }
    DialogCopy(const DialogCopy&) = delete;
    DialogCopy& operator=(const DialogCopy&) = delete;

    std::byte* data() noexcept { return data_; }
    const std::byte* data() const noexcept { return data_; }
    std::size_t size() const noexcept { return size_; }

    void clear() noexcept { size_ = 0; }

    // Throw CXMemException.
    void append(const void* bytes, std::size_t n) { std::memcpy(extend(n), bytes, n); }
    void append_zeroes(std::size_t n) { std::memset(extend(n), 0, n); }

    // A text and its zero. Looks for that while it copies.
    void append_text(const wchar_t* text) {
        constexpr std::size_t kBlock = kBlockUnits * sizeof *text;
        for (; may_read_block(text); text += kBlockUnits) {
            append(text, kBlock);
            const unsigned length = length_in_block(text);
            if (length < kBlockUnits) {
                size_ -= kBlock - (length + 1) * sizeof *text;
                return;
            }
        }
        append(text, (text_length(text) + 1) * sizeof *text);
    }

private:
    // The place of n more bytes, which have yet to be written.
    std::byte* extend(std::size_t n) {
        if (n > capacity_ - size_) grow(size_ + n);
        size_ += n;
        return data_ + size_ - n;
    }

    [[gnu::noinline]] void grow(std::size_t needed) {
        const std::size_t capacity = needed + needed / 2;
        auto* const larger = static_cast<std::byte*>(mem_alloc(capacity));
        std::memcpy(larger, data_, size_);
        if (data_ != usual_) mem_free(data_);
        data_ = larger;
        capacity_ = capacity;
    }

    static constexpr std::size_t kUsual = 8192;

    std::byte* data_ = usual_;
    std::size_t size_ = 0;
    std::size_t capacity_ = kUsual;
    alignas(8) std::byte usual_[kUsual];
};

} // namespace qzr
