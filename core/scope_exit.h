// Runs an action at the end of a scope, on every way out.
#pragma once

#include <utility>

namespace qzr {

// The action must not throw. After dismiss() it does not run: for undoing what a later step may fail to
// complete.
template <class Action>
class ScopeExit {
public:
    explicit ScopeExit(Action action) : action_(std::move(action)) {}
    ~ScopeExit() {
        if (armed_) action_();
    }
    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;

    void dismiss() noexcept { armed_ = false; }

private:
    Action action_;
    bool armed_ = true;
};

} // namespace qzr
