#include "supp/pe_imports.h"

#include "core/readable_memory.h"
#include "core/windows_lean.h"

#include <cstdint>
#include <cstring>

namespace qzr {

namespace {

// Bytes of the image by their offset from its start; none outside the module's own memory.
class ImageBytes {
public:
    explicit ImageBytes(const void* module) noexcept
        : base_(static_cast<const std::byte*>(module)), allocation_(readable_region(module).allocation) {}

    void limit(std::uint64_t size) noexcept { size_ = size; }
    std::uint64_t size() const noexcept { return size_; }

    template <class T>
    bool read(std::uint64_t offset, T& value) noexcept {
        if (!holds(offset, sizeof value)) return false;
        std::memcpy(&value, base_ + offset, sizeof value);
        return true;
    }

    // A place for 8 bytes that is aligned as every linker aligns it; null when it is not, or not in the
    // image.
    void** slot(std::uint64_t offset) noexcept {
        if (!holds(offset, sizeof(void*))) return nullptr;
        const std::byte* const place = base_ + offset;
        if (reinterpret_cast<std::uintptr_t>(place) % sizeof(void*) != 0) return nullptr;
        return reinterpret_cast<void**>(const_cast<std::byte*>(place));
    }

private:
    bool holds(std::uint64_t offset, std::uint64_t count) noexcept {
        if (offset > size_ || count > size_ - offset) return false;
        return readable(base_ + offset, base_ + offset + count);
    }

    bool readable(const std::byte* from, const std::byte* end) noexcept {
        if (from >= known_from_ && end <= known_end_) return true;
        known_from_ = from;
        known_end_ = from;
        while (known_end_ < end) {
            const MemoryRegion region = readable_region(known_end_);
            if (region.end == nullptr || region.allocation != allocation_) return false;
            known_end_ = region.end;
        }
        return true;
    }

    const std::byte* base_;
    const void* allocation_;
    std::uint64_t size_ = 0xFFFFFFFF; // until the headers tell
    const std::byte* known_from_ = nullptr;
    const std::byte* known_end_ = nullptr;
};

constexpr std::uint64_t kOptionalHeaderSize = 240; // of the 64-bit layout

// Handles of files mapped as data are marked in their lowest bits, and have no import table that calls go
// through.
bool may_be_image(const void* module) noexcept {
    constexpr std::uintptr_t kDataMarks = 3;
    return module != nullptr && (reinterpret_cast<std::uintptr_t>(module) & kDataMarks) == 0;
}

// @return the offset of the first import descriptor; 0 when the headers are damaged or name none.
std::uint64_t import_directory(ImageBytes& image) noexcept {
    IMAGE_DOS_HEADER dos;
    IMAGE_NT_HEADERS64 headers;
    static_assert(sizeof headers.OptionalHeader == kOptionalHeaderSize);
    if (!image.read(0, dos) || dos.e_magic != IMAGE_DOS_SIGNATURE || dos.e_lfanew < 0) return 0;
    if (!image.read(static_cast<std::uint64_t>(dos.e_lfanew), headers)) return 0;
    const IMAGE_OPTIONAL_HEADER64& optional = headers.OptionalHeader;
    if (headers.Signature != IMAGE_NT_SIGNATURE ||
        headers.FileHeader.SizeOfOptionalHeader != kOptionalHeaderSize ||
        optional.Magic != IMAGE_NT_OPTIONAL_HDR64_MAGIC ||
        optional.NumberOfRvaAndSizes <= IMAGE_DIRECTORY_ENTRY_IMPORT)
        return 0;
    image.limit(optional.SizeOfImage);
    return optional.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
}

class ImportWalk {
public:
    ImportWalk(ImageBytes& image, const void* function, Vector<void**>& slots) noexcept
        : image_(image), function_(function), slots_(slots), slots_left_(image.size() / sizeof(void*)) {}

    // Descriptors up to the one without a name.
    bool run(std::uint64_t offset) {
        IMAGE_IMPORT_DESCRIPTOR descriptor;
        while (image_.read(offset, descriptor)) {
            if (descriptor.Name == 0) return true;
            if (!walk_table(descriptor.FirstThunk)) return false;
            offset += sizeof descriptor;
        }
        return false;
    }

private:
    // Slots up to the empty one. Tables of a sound image do not overlap, so the image's size bounds them all.
    bool walk_table(std::uint64_t offset) {
        if (offset == 0) return false;
        for (; slots_left_ != 0; --slots_left_, offset += sizeof(void*)) {
            void** const slot = image_.slot(offset);
            if (slot == nullptr) return false;
            if (*slot == nullptr) return true;
            if (*slot == function_) slots_.push_back(slot);
        }
        return false;
    }

    ImageBytes& image_;
    const void* function_;
    Vector<void**>& slots_;
    std::uint64_t slots_left_;
};

} // namespace

bool find_import_slots(const void* module, const void* function, Vector<void**>& slots) {
    slots.clear();
    if (!may_be_image(module)) return false;
    ImageBytes image(module);
    const std::uint64_t directory = import_directory(image);
    if (directory != 0 && ImportWalk(image, function, slots).run(directory)) return true;
    slots.clear();
    return false;
}

} // namespace qzr
