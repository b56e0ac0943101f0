#include "supp/dialog_template.h"

#include "string/scan.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace qzr {

namespace {

using Unit = std::uint16_t;

// The parts of both layouts that have a fixed size, in bytes from their start.
struct Layout {
    std::size_t header;
    std::size_t style;  // within the header
    std::size_t count;  // of items, within the header
    std::size_t extent; // within the header: width, height
    std::size_t font;   // between the point size and the face name
    std::size_t item;
    std::size_t place; // within the item: left, top, width, height
    std::size_t id;    // within the item
};
constexpr Layout kPlain = {18, 0, 8, 14, 0, 18, 8, 16};
constexpr Layout kExtended = {26, 12, 16, 22, 4, 24, 12, 20};

constexpr Unit kOrdinalMark = 0xFFFF;       // the next unit is an identifier, no text
constexpr Unit kMessageBoxFont = 0x7FFF;    // a point size that stands for the font of message boxes
constexpr std::uint32_t kStyleFont = 0x40;  // DS_SETFONT
constexpr std::size_t kLongestText = 65535; // units
constexpr std::size_t kUsualCopy = 8192;

// What the size in front of an item's creation data counts. The plain layout counts the two bytes of the size
// too, but tools wrote it both ways.
enum class CreationSize { with_itself, alone };

// Copies from left to right. After a failure, which is kept, reads give zeroes.
class Rewriter {
public:
    Rewriter(const void* data, std::size_t size, const DialogChanges& changes, Vector<std::byte>& copy)
        : next_(static_cast<const std::byte*>(data)), end_(next_ + size), changes_(changes), copy_(copy) {
        copy_.clear();
        copy_.reserve(std::min(size + size / 2, kUsualCopy)); // the size is only known to be no larger
    }

    bool run(const Layout& layout, CreationSize creation_size) {
        const std::byte* const header = copy_bytes(layout.header);
        if (header == nullptr) return false;
        if (const RECT* const place = place_of(0)) put_extent(layout.extent, *place);
        copy_name(); // of the menu
        copy_name(); // of the class
        copy_text();
        if ((read<std::uint32_t>(header + layout.style) & kStyleFont) != 0) copy_font(layout);
        for (unsigned left = read<Unit>(header + layout.count); left != 0 && sound_; --left)
            copy_item(layout, creation_size);
        return sound_;
    }

private:
    template <class T>
    static T read(const std::byte* from) noexcept {
        T value;
        std::memcpy(&value, from, sizeof value);
        return value;
    }

    std::size_t left() const noexcept { return static_cast<std::size_t>(end_ - next_); }

    void put(const void* bytes, std::size_t n) {
        const auto* const from = static_cast<const std::byte*>(bytes);
        copy_.insert(copy_.end(), from, from + n);
    }

    // @return the bytes in the original; null when there are not as many.
    const std::byte* copy_bytes(std::size_t n) {
        if (!sound_ || n > left()) {
            sound_ = false;
            return nullptr;
        }
        put(next_, n);
        next_ += n;
        return next_ - n;
    }

    Unit copy_unit() {
        const std::byte* const unit = copy_bytes(sizeof(Unit));
        return unit != nullptr ? read<Unit>(unit) : Unit{0};
    }

    Unit peek_unit() const noexcept { return sound_ && left() >= sizeof(Unit) ? read<Unit>(next_) : Unit{0}; }

    // Reads a text and its zero into text_; it may stand at an odd address.
    void read_text() {
        const std::size_t most = sound_ ? std::min(left() / sizeof(Unit), kLongestText + 1) : 0;
        const std::size_t length = text_length(reinterpret_cast<const wchar_t*>(next_), most);
        sound_ = length < most;
        if (!sound_) return;
        text_.resize(length + 1);
        std::memcpy(text_.data(), next_, text_.size() * sizeof(Unit));
        next_ += text_.size() * sizeof(Unit);
    }

    void put_text(const wchar_t* text) { put(text, (text_length(text) + 1) * sizeof *text); }

    void put_read_text() { put(text_.data(), text_.size() * sizeof(wchar_t)); }

    void copy_text() {
        read_text();
        if (!sound_) return;
        const wchar_t* translated = text_.front() != 0 ? changes_.text(text_.data()) : nullptr;
        // A translation that began like an identifier would be taken for one.
        const bool usable = translated != nullptr && *translated != 0 && *translated != kOrdinalMark;
        if (usable)
            put_text(translated);
        else
            put_read_text();
    }

    void copy_name() {
        if (copy_ordinal()) return;
        read_text();
        if (sound_) put_read_text();
    }

    bool copy_ordinal() {
        if (peek_unit() != kOrdinalMark) return false;
        copy_bytes(2 * sizeof(Unit));
        return true;
    }

    void copy_font(const Layout& layout) {
        if (copy_unit() == kMessageBoxFont) return;
        copy_bytes(layout.font);
        copy_name();
    }

    // Fits both: the identifier of the plain layout has 16 bits.
    static unsigned item_id(const Layout& layout, const std::byte* item) noexcept {
        return layout.item - layout.id == sizeof(Unit) ? read<Unit>(item + layout.id)
                                                       : read<std::uint32_t>(item + layout.id);
    }

    const RECT* place_of(unsigned item) const { return changes_.place ? changes_.place(item) : nullptr; }

    void put_unit(std::size_t at, LONG value) noexcept {
        const auto unit = static_cast<Unit>(value);
        std::memcpy(&copy_[at], &unit, sizeof unit);
    }

    void put_extent(std::size_t at, const RECT& place) noexcept {
        put_unit(at, place.right - place.left);
        put_unit(at + sizeof(Unit), place.bottom - place.top);
    }

    void put_place(std::size_t at, const RECT& place) noexcept {
        put_unit(at, place.left);
        put_unit(at + sizeof(Unit), place.top);
        put_extent(at + 2 * sizeof(Unit), place);
    }

    void align() {
        constexpr std::size_t kBoundary = 4;
        const std::size_t gap = (0 - reinterpret_cast<std::uintptr_t>(next_)) % kBoundary;
        if (gap > left()) {
            sound_ = false;
            return;
        }
        next_ += gap;
        copy_.resize((copy_.size() + kBoundary - 1) / kBoundary * kBoundary);
    }

    void copy_item(const Layout& layout, CreationSize creation_size) {
        align();
        const std::size_t start = copy_.size();
        const std::byte* const item = copy_bytes(layout.item);
        if (item == nullptr) return;
        const unsigned id = item_id(layout, item);
        if (const RECT* const place = id != 0 ? place_of(id) : nullptr)
            put_place(start + layout.place, *place);
        sound_ = sound_ && peek_unit() != 0; // every control has a class
        copy_name();
        if (!copy_ordinal()) copy_text();
        copy_creation_data(creation_size);
    }

    void copy_creation_data(CreationSize creation_size) {
        std::size_t size = copy_unit();
        if (size != 0 && creation_size == CreationSize::with_itself) {
            sound_ = sound_ && size >= sizeof(Unit);
            size -= sizeof(Unit);
        }
        if (sound_) copy_bytes(size);
    }

    const std::byte* next_;
    const std::byte* end_;
    const DialogChanges& changes_;
    Vector<std::byte>& copy_;
    Vector<wchar_t> text_;
    bool sound_ = true;
};

bool is_extended(const void* data, std::size_t size) noexcept {
    constexpr Unit kMark[] = {1, 0xFFFF}; // version, signature
    return size >= sizeof kMark && std::memcmp(data, kMark, sizeof kMark) == 0;
}

} // namespace

bool translate_dialog_template(const void* data, std::size_t size, const DialogChanges& changes,
                               Vector<std::byte>& copy) {
    const auto run = [&](const Layout& layout, CreationSize creation_size) {
        return Rewriter(data, size, changes, copy).run(layout, creation_size);
    };
    if (is_extended(data, size)) return run(kExtended, CreationSize::alone);
    return run(kPlain, CreationSize::with_itself) || run(kPlain, CreationSize::alone);
}

} // namespace qzr
