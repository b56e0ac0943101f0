// Pairs of narrow texts that stay together until the end.
#pragma once

#include "core/allocator.h"
#include "qzexception.h"
#include "string/scan.h"

#include <cstring>

namespace qzr {

// Cuts the pairs from large blocks, one text behind the other. A pair is known by a 32-bit number, which is
// half as large as a pointer and is paid once per pair.
class TextPairs {
public:
    TextPairs() noexcept = default;
    ~TextPairs() {
        for (char* const block : blocks_)
            mem_free(block);
    }
    TextPairs(const TextPairs&) = delete;
    TextPairs& operator=(const TextPairs&) = delete;

    // Copies a pair. @return its number, never 0. Throws CXMemException.
    unsigned add(const char* source, const char* translation) {
        const std::size_t source_size = text_length(source) + 1;
        const std::size_t translation_size = text_length(translation) + 1;
        const std::size_t start = room_for(source_size + translation_size);
        char* const place = blocks_.back() + start;
        std::memcpy(place, source, source_size);
        std::memcpy(place + source_size, translation, translation_size);
        used_ = start + source_size + translation_size;
        return static_cast<unsigned>((blocks_.size() - 1) * kUnitsOfBlock + start / kUnit);
    }

    const char* source(unsigned pair) const noexcept {
        return blocks_[pair / kUnitsOfBlock] + pair % kUnitsOfBlock * kUnit;
    }
    const char* translation(unsigned pair) const noexcept {
        const char* const text = source(pair);
        return text + text_length(text) + 1;
    }

private:
    // Pairs start on such boundaries, so that their numbers reach as far as 16 GiB.
    static constexpr std::size_t kUnit = 4;
    static constexpr std::size_t kBlock = 64 * 1024;
    static constexpr std::size_t kUnitsOfBlock = kBlock / kUnit;
    static constexpr std::size_t kMostBlocks = (std::size_t{1} << 32) / kUnitsOfBlock;

    // @return where in the last block the next pair starts.
    std::size_t room_for(std::size_t size) {
        const std::size_t start = (used_ + kUnit - 1) / kUnit * kUnit;
        if (start <= kBlock && size <= kBlock - start) return start;
        add_block(size <= kBlock ? kBlock : size);
        return 0;
    }

    // There is no block 0, hence no pair 0. A pair that is larger than a block has one to itself.
    void add_block(std::size_t size) {
        if (blocks_.empty()) blocks_.push_back(nullptr);
        if (blocks_.size() == kMostBlocks) throw CXMemException();
        blocks_.push_back(nullptr);
        used_ = kBlock;
        blocks_.back() = static_cast<char*>(mem_alloc(size));
    }

    Vector<char*> blocks_;
    std::size_t used_ = kBlock; // of the last block
};

} // namespace qzr
