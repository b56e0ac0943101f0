#include "fuzz/mutation.h"

#include <algorithm>
#include <utility>

namespace fuzz {

namespace {

std::string bytes_of(std::uint64_t number, std::size_t size) {
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i, number >>= 8)
        bytes += static_cast<char>(number);
    return bytes;
}

} // namespace

// What was found last leads on more often.
const Kept& Mutator::pick() {
    constexpr std::size_t kLast = 24;
    const std::size_t n = corpus_.size();
    const std::size_t from = random_.one_in(2) && n > kLast ? n - kLast : 0;
    return corpus_[from + random_.below(n - from)];
}

std::string Mutator::next() {
    const Kept& from = pick();
    std::string input = from.bytes;
    std::size_t steps = 1;
    while (steps < 64 && !random_.one_in(2))
        steps *= 2;
    for (steps = 1 + random_.below(steps); steps != 0; --steps) {
        if (target_.mutate != nullptr && random_.one_in(2) && target_.mutate(input, random_)) continue;
        change(input, from);
        if (input.size() > target_.longest) input.resize(target_.longest);
    }
    return input;
}

void Mutator::insert(std::string& input, std::size_t at, const std::string& bytes) {
    if (random_.one_in(3) && at + bytes.size() <= input.size()) {
        input.replace(at, bytes.size(), bytes);
    } else {
        input.insert(at, bytes);
    }
}

// Numbers at the edges of what counts and sizes can be.
void Mutator::put_number(std::string& input, std::size_t at) {
    constexpr std::uint64_t kEdges[] = {
        0,          1,          2,          7,          8,          16,         0x7F,
        0x80,       0xFF,       0x100,      0x7FFF,     0x8000,     0xFFFF,     0x10000,
        0x7FFFFFFF, 0x80000000, 0xFFFFFFFC, 0xFFFFFFFE, 0xFFFFFFFF, 0x04000000, 0x0403FFFB};
    const std::size_t size = std::size_t{1} << random_.below(3);
    std::uint64_t number = kEdges[random_.below(std::size(kEdges))];
    if (random_.one_in(4)) number = input.size() - random_.below(std::min<std::size_t>(input.size(), 16) + 1);
    insert(input, at, bytes_of(number, size));
}

// The library compared two numbers: where the input holds one of them it gets the other.
void Mutator::follow_comparison(std::string& input, const Kept& from) {
    if (from.comparisons.empty()) return;
    auto [a, b, size] = from.comparisons[random_.below(from.comparisons.size())];
    if (random_.one_in(4)) std::swap(a, b);
    const std::string wanted = bytes_of(b + random_.below(3) - 1, size), exact = bytes_of(b, size);
    const std::string& put = random_.one_in(4) ? wanted : exact;
    std::size_t width = size;
    while (width > 1 && a >> (8 * (width / 2)) == 0 && b >> (8 * (width / 2)) == 0)
        width /= 2; // it was widened before it was compared
    const std::string found = bytes_of(a, width);
    const std::size_t first = input.find(found, random_.below(input.size() + 1));
    const std::size_t at = first != input.npos ? first : input.find(found);
    if (at != input.npos) {
        input.replace(at, width, put, 0, width);
    } else {
        insert(input, random_.below(input.size() + 1), put.substr(0, width));
    }
}

void Mutator::change(std::string& input, const Kept& from) {
    const std::size_t at = random_.below(input.size() + 1);
    const std::size_t rest = input.size() - at;
    switch (random_.below(11)) {
    case 0:
        if (rest != 0) input[at] = static_cast<char>(random_.next());
        break;
    case 1:
        if (rest != 0) input[at] = static_cast<char>(input[at] ^ (1 << random_.below(8)));
        break;
    case 2:
        input.erase(at, 1 + random_.below(random_.one_in(2) ? 4 : rest + 1));
        break;
    case 3: { // a part again, elsewhere
        const std::size_t length = random_.below(std::min<std::size_t>(rest, 300) + 1);
        insert(input, random_.below(input.size() + 1), std::string(input, at, length));
        break;
    }
    case 4: {
        const std::string& other = pick().bytes;
        const std::size_t start = random_.below(other.size() + 1);
        input.resize(at);
        input.append(other, start, random_.below(other.size() - start + 1));
        break;
    }
    case 5:
        put_number(input, at);
        break;
    case 6:
        if (rest != 0) input[at] = static_cast<char>(input[at] + (random_.one_in(2) ? 1 : -1));
        break;
    case 7:
    case 8:
        follow_comparison(input, from);
        break;
    default:
        insert(input, at, pieces_[random_.below(pieces_.size())]);
    }
}

} // namespace fuzz
