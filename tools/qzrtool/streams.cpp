#include "streams.h"

namespace tool {

CQZRef<IXStream> new_stream() {
    auto stream = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
    if (!stream) throw CXMemException();
    return stream;
}

CQZRef<IXStream> stream_of(std::string_view bytes) {
    auto stream = new_stream();
    if (!bytes.empty()) {
        CQZRef<IMemBlock>::Require(stream.Get())->SetData(bytes.data(), static_cast<unsigned>(bytes.size()));
    }
    return stream;
}

std::string bytes_of(IXStream& stream) {
    const auto block = CQZRef<IMemBlock>::Require(&stream);
    if (block->GetSize() == 0) return {};
    return std::string(static_cast<const char*>(block->GetData()), block->GetSize());
}

} // namespace tool
