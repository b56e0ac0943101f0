// Changed inputs: the same seed gives the same ones.
#pragma once

#include "fuzz/coverage.h"
#include "fuzz/target.h"

namespace fuzz {

struct Kept {
    std::string bytes;
    std::vector<Comparison> comparisons; // that the library made over it
};

class Mutator {
public:
    Mutator(const Target& target, std::uint64_t seed)
        : target_(target), pieces_(target.pieces()), random_(seed) {}

    void keep(Kept input) { corpus_.push_back(std::move(input)); }
    const std::vector<Kept>& corpus() const { return corpus_; }
    void forget() { corpus_.clear(); }

    std::string next(); // the corpus must not be empty

private:
    const Kept& pick();
    void change(std::string& input, const Kept& from);
    void insert(std::string& input, std::size_t at, const std::string& bytes);
    void put_number(std::string& input, std::size_t at);
    void follow_comparison(std::string& input, const Kept& from);

    const Target& target_;
    const std::vector<std::string> pieces_;
    Random random_;
    std::vector<Kept> corpus_;
};

} // namespace fuzz
