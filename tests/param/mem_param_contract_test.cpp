#include "contracts/param_contract.h"

namespace {

struct MemoryTree {
    static constexpr ParamDifferences differs{};
    static CQZRef<IParam> root() { return memory_tree(); }
};

INSTANTIATE_TYPED_TEST_SUITE_P(Memory, ParamContract, MemoryTree);

} // namespace
