// An exception of the plug-in's own, which its callers know from this header.
#pragma once

#include "qzexception.h"

class PluginFailure : public CXException {
public:
    explicit PluginFailure(unsigned code) noexcept : CXException(code) {}
    void Report() override { reported = true; }

    bool reported = false;
};
