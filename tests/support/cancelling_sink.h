// A progress sink that counts how often it is asked, and cancels from some time on.
#pragma once

#include "qzstream.h"
#include "qzunknown.h"

class CancellingSink final : public CQZUnknownImpl<QZRFC::IProgress> {
public:
    explicit CancellingSink(int* living = nullptr) : living_(living) { count(1); }
    ~CancellingSink() override { count(-1); }
    int CheckCancel() override { return ++asked >= cancel_from ? -1 : 0; } // any value but 0 cancels

    int asked = 0;
    int cancel_from = 1'000'000;

private:
    void count(int more) const {
        if (living_ != nullptr) *living_ += more;
    }

    int* living_;
};
