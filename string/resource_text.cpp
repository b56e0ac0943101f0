#include "string/resource_text.h"

#include "core/library.h"
#include "string/string_access.h"

namespace qzr {

int load_string(void* module, unsigned id, char* buffer, int size) {
    if (const StringLoaders* const loaders = library().string_loaders.load())
        return loaders->narrow(module, id, buffer, size);
    return LoadStringA(static_cast<HINSTANCE>(module), id, buffer, size);
}

int load_string(void* module, unsigned id, wchar_t* buffer, int size) {
    if (const StringLoaders* const loaders = library().string_loaders.load())
        return loaders->wide(module, id, buffer, size);
    return LoadStringW(static_cast<HINSTANCE>(module), id, buffer, size);
}

namespace {

constexpr int kFirstCapacity = 255;
constexpr int kCapacityStep = 256;
constexpr int kLastCapacity = 65535 + kCapacityStep; // resource texts have 16-bit lengths

// The last unit of the room is never offered, so that the text ends even when a loader forgets the
// terminator.
template <class String>
int load(String& s, void* module, unsigned id) {
    for (int capacity = kFirstCapacity; capacity <= kLastCapacity; capacity += kCapacityStep) {
        auto* const buffer = s.GetBuffer(capacity + 1);
        std::memset(buffer, 0, (static_cast<std::size_t>(capacity) + 2) * sizeof *buffer);
        const int loaded = load_string(module, id, buffer, capacity + 1);
        if (loaded <= 0) *buffer = 0;
        s.ReleaseBuffer();
        if (loaded <= 0) return 0;
        // More than was offered is the length of a text that was cut: it is asked for again, with more room.
        if (loaded < capacity) return 1;
    }
    return 1;
}

} // namespace
} // namespace qzr

int CXString::Load(void* hInstance, unsigned id) { return qzr::load(*this, hInstance, id); }

int CXStringW::Load(void* hInstance, unsigned id) { return qzr::load(*this, hInstance, id); }
