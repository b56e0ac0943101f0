// How far long work has come, and whether it goes on.
#pragma once

#include "qzexception.h"
#include "qzref.h"
#include "qzstream.h"

namespace tool {

// Storages that are wrapped with it ask it after every transfer; other work calls check.
class Progress : public CQZUnknownImpl<QZRFC::IProgress> {
public:
    // Begins a part of the work. @param total in bytes, 0 when it is not known
    virtual void begin(unsigned long long total) = 0;
    virtual void advance(unsigned long long bytes) = 0;

    // Throws CXException QZERR_CANCELLED when the user wants the work to end.
    void check() {
        if (CheckCancel() != 0) throw CXException(QZERR_CANCELLED);
    }
};

} // namespace tool
