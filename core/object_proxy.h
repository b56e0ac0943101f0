// The stand-in for a stored object whose class this process does not know.
#pragma once

#include "qzobject.h"
#include "qzstring.h"

namespace qzr {

// Keeps the class name and the bytes of the record and writes them back unchanged, so that a document passes
// through a process that lacks some of its classes without losing anything.
class CXProxy final : public CQZUnknownImplParent<IPersistXStream, IPersistX> {
public:
    // length: the length of the data as the record says it; the bytes come with Load.
    CXProxy(const char* name, unsigned length) : name_(name), length_(length) {}
    ~CXProxy() override;

    const char* GetClassName() override { return name_.GetData(); }
    unsigned GetSizeMax() override { return length_; }
    int Load(IXStream* stream) override;
    int Save(IXStream* stream) override;

private:
    void free_data() noexcept;

    CXString name_;
    unsigned length_;
    unsigned held_ = 0;    // bytes of data_: fewer than length_ when that reaches past the stream
    void* data_ = nullptr; // a block of the library's allocator
};

} // namespace qzr
