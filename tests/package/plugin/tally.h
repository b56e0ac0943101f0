// What the plug-in and its users share.
#pragma once

#include <qzobject.h>

/// Counts; a tally can be stored.
class ITally : public IPersistXStream {
public:
    virtual void Add(int n) = 0;
    virtual int Total() = 0;

protected:
    ~ITally() = default;
};
