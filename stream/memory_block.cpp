#include "stream/memory_block.h"

#include "qzexception.h"

#include <limits>

namespace qzr {

namespace {

constexpr std::uint64_t kMostBytes = std::numeric_limits<unsigned>::max();

// The old capacity is added to the requirement, raised past the next multiple of the step: one that is a
// multiple already gains a whole step. What would pass the limit is given just what it requires.
std::uint64_t grown_capacity(std::uint64_t capacity, std::uint64_t required, unsigned step) {
    const std::uint64_t raise = step != 0 ? step - required % step : 0;
    const std::uint64_t grown = capacity + required + raise;
    return grown <= kMostBytes ? grown : required;
}

bool lies_in(const void* p, const unsigned char* begin, std::size_t length) {
    const auto address = reinterpret_cast<std::uintptr_t>(p);
    const auto first = reinterpret_cast<std::uintptr_t>(begin);
    return begin != nullptr && address >= first && address - first < length;
}

} // namespace

// Answers where the source is afterwards: growing may have moved it.
const void* MemoryBlock::make_room(std::uint64_t required, const void* source) {
    if (required > kMostBytes) throw CXMemException();
    const unsigned char* before = storage_.data();
    const bool own = lies_in(source, before, capacity_);
    const std::uint64_t capacity = grown_capacity(capacity_, required, step_);
    const std::size_t offset = own ? static_cast<const unsigned char*>(source) - before : 0;
    storage_.grow(capacity, size_);
    capacity_ = static_cast<unsigned>(capacity);
    return own ? storage_.data() + offset : source;
}

void MemoryBlock::replace(const void* data, unsigned length) {
    BlockStorage fresh(length);
    if (data != nullptr && length != 0) std::memcpy(fresh.data(), data, length);
    storage_.swap(fresh);
    capacity_ = length;
    size_ = length;
    step_ = length;
}

} // namespace qzr
