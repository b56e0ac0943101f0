#include "core/object_proxy.h"

#include "core/allocator.h"
#include "core/stream_position.h"

#include <algorithm>

namespace qzr {

namespace {

// Streams may deliver less than asked for before their end.
void read_all(IXStream& stream, void* buffer, unsigned count) {
    char* to = static_cast<char*>(buffer);
    while (count != 0) {
        const unsigned got = stream.Read(to, count);
        if (got == 0) throw CXEofException();
        to += got;
        count -= got;
    }
}

} // namespace

CXProxy::~CXProxy() { free_data(); }

void CXProxy::free_data() noexcept {
    mem_free(data_);
    data_ = nullptr;
    held_ = 0;
}

// The length counts as a signed number: one of 2 GiB and more is negative, hence never too long, and takes
// what the stream has left.
int CXProxy::Load(IXStream* stream) {
    free_data();
    const unsigned left = bytes_to_end(*stream);
    if (std::int64_t{static_cast<int>(length_)} > left) throw CXException(QZERR_LENGTH);
    const unsigned count = std::min(length_, left);
    if (count == 0) return 1;
    data_ = mem_alloc(count);
    read_all(*stream, data_, count);
    held_ = count;
    return 1;
}

int CXProxy::Save(IXStream* stream) {
    if (held_ != 0) stream->Write(data_, held_);
    return 1;
}

} // namespace qzr
