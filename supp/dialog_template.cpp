#include "supp/dialog_template.h"

#include "string/scan.h"
#include "supp/wide_block.h"

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
constexpr std::size_t kMostData = 65533;    // bytes of creation data for both readings; two more can be told

// What the size in front of an item's creation data counts. The plain layout counts the two bytes of the size
// too, but tools write it, and systems read it, both ways. Where padding takes up the difference, the items
// stand in the same places either way; then the copy is to hold the data, and the items, for both.
enum class CreationSize { with_itself, alone, either };

// Most texts end within a block or two.
std::size_t length_up_to(const wchar_t* text, std::size_t limit) noexcept {
    std::size_t length = 0;
    while (limit - length >= kBlockUnits) {
        const unsigned more = length_in_block(text + length);
        length += more;
        if (more < kBlockUnits) return length;
    }
    return length + text_length(text + length, limit - length);
}

// Copies from left to right. After a failure, which is kept, reads give zeroes.
template <const Layout& kLayout>
class Rewriter {
public:
    Rewriter(const void* data, std::size_t size, const DialogChanges& changes, DialogCopy& copy)
        : next_(static_cast<const std::byte*>(data)), end_(next_ + size), changes_(changes), copy_(copy) {
        copy_.clear();
    }

    bool run(CreationSize creation_size) {
        const std::byte* const header = copy_bytes(kLayout.header);
        if (header == nullptr) return false;
        if (const RECT* const place = place_of(0)) put_extent(kLayout.extent, *place);
        copy_name(); // of the menu
        copy_name(); // of the class
        copy_text();
        if ((read<std::uint32_t>(header + kLayout.style) & kStyleFont) != 0) copy_font();
        for (unsigned left = read<Unit>(header + kLayout.count); left != 0 && sound_; --left)
            copy_item(creation_size, left == 1);
        return sound_;
    }

    // After a run with sizes that count themselves.
    bool has_creation_data() const noexcept { return has_creation_data_; }
    bool readings_agree() const noexcept { return readings_agree_; } // on the places of all items

private:
    template <class T>
    static T read(const std::byte* from) noexcept {
        T value;
        std::memcpy(&value, from, sizeof value);
        return value;
    }

    std::size_t left() const noexcept { return static_cast<std::size_t>(end_ - next_); }

    // @return the bytes in the original; null when there are not as many.
    const std::byte* copy_bytes(std::size_t n) {
        if (!sound_ || n > left()) {
            sound_ = false;
            return nullptr;
        }
        copy_.append(next_, n);
        next_ += n;
        return next_ - n;
    }

    Unit copy_unit() {
        const std::byte* const unit = copy_bytes(sizeof(Unit));
        return unit != nullptr ? read<Unit>(unit) : Unit{0};
    }

    Unit peek_unit() const noexcept { return sound_ && left() >= sizeof(Unit) ? read<Unit>(next_) : Unit{0}; }

    // @return the text that comes next, and steps over it; null when it does not end.
    const wchar_t* read_text() {
        const std::size_t most = sound_ ? std::min(left() / sizeof(Unit), kLongestText + 1) : 0;
        const auto* const text = reinterpret_cast<const wchar_t*>(next_);
        const std::size_t length = length_up_to(text, most);
        sound_ = length < most;
        if (!sound_) return nullptr;
        const std::size_t size = (length + 1) * sizeof(Unit);
        next_ += size;
        text_size_ = size;
        if (reinterpret_cast<std::uintptr_t>(text) % alignof(wchar_t) == 0) return text;
        straight_text_.resize(length + 1);
        std::memcpy(straight_text_.data(), text, size);
        return straight_text_.data();
    }

    void copy_text() {
        const wchar_t* const text = read_text();
        if (text == nullptr) return;
        const wchar_t* const translated = *text != 0 ? changes_.text(text) : nullptr;
        // A translation that began like an identifier would be taken for one.
        const bool usable = translated != nullptr && *translated != 0 && *translated != kOrdinalMark;
        if (usable)
            copy_.append_text(translated);
        else
            copy_.append(text, text_size_);
    }

    void copy_name() {
        if (copy_ordinal()) return;
        if (const wchar_t* const name = read_text()) copy_.append(name, text_size_);
    }

    bool copy_ordinal() {
        if (peek_unit() != kOrdinalMark) return false;
        copy_bytes(2 * sizeof(Unit));
        return true;
    }

    void copy_font() {
        if (copy_unit() == kMessageBoxFont) return;
        copy_bytes(kLayout.font);
        copy_name();
    }

    // Fits both: the identifier of the plain layout has 16 bits.
    static unsigned item_id(const std::byte* item) noexcept {
        return kLayout.item - kLayout.id == sizeof(Unit) ? read<Unit>(item + kLayout.id)
                                                         : read<std::uint32_t>(item + kLayout.id);
    }

    const RECT* place_of(unsigned item) const { return changes_.place ? changes_.place(item) : nullptr; }

    void put_unit(std::size_t at, LONG value) noexcept {
        const auto unit = static_cast<Unit>(value);
        std::memcpy(copy_.data() + at, &unit, sizeof unit);
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

    static constexpr std::size_t kBoundary = 4; // of items

    void align() {
        const std::size_t gap = (0 - reinterpret_cast<std::uintptr_t>(next_)) % kBoundary;
        if (gap > left()) {
            sound_ = false;
            return;
        }
        next_ += gap;
        copy_.append_zeroes((0 - copy_.size()) % kBoundary);
    }

    void copy_item(CreationSize creation_size, bool is_last) {
        align();
        const std::size_t start = copy_.size();
        const std::byte* const item = copy_bytes(kLayout.item);
        if (item == nullptr) return;
        const unsigned id = item_id(item);
        if (const RECT* const place = id != 0 ? place_of(id) : nullptr)
            put_place(start + kLayout.place, *place);
        sound_ = sound_ && peek_unit() != 0; // every control has a class
        copy_name();
        if (!copy_ordinal()) copy_text();
        if constexpr (&kLayout == &kExtended) {
            copy_bytes(copy_unit());
        } else if (const std::size_t size = copy_unit(); size != 0 && sound_) {
            if (creation_size == CreationSize::with_itself)
                copy_data_behind_size(size, is_last);
            else
                copy_data_for_both(size, is_last, creation_size == CreationSize::either);
        }
    }

    // Whether an item that ends here, or two bytes later, leaves the next one in the same place.
    static bool padding_takes_size(std::uintptr_t end) noexcept {
        return (0 - end) % kBoundary >= sizeof(Unit);
    }

    void copy_data_behind_size(std::size_t size, bool is_last) {
        has_creation_data_ = true;
        sound_ = size >= sizeof(Unit);
        if (!sound_) return;
        copy_bytes(size - sizeof(Unit));
        if (size > kMostData || (!is_last && !padding_takes_size(reinterpret_cast<std::uintptr_t>(next_))))
            readings_agree_ = false;
    }

    // Texts that became longer may have moved the data to where the padding is too short: then two zeroes
    // more belong to it. Behind the last item nothing can move; what a size that counts itself does not cover
    // may be missing there.
    void copy_data_for_both(std::size_t size, bool is_last, bool may_lack_size) {
        const std::size_t size_at = copy_.size() - sizeof(Unit);
        const std::size_t missing = is_last && may_lack_size && size > left() ? size - left() : 0;
        sound_ = size <= kMostData && missing <= sizeof(Unit);
        if (copy_bytes(size - std::min(size, missing)) == nullptr) return;
        copy_.append_zeroes(missing);
        if (is_last || padding_takes_size(copy_.size() - sizeof(Unit))) return;
        copy_.append_zeroes(sizeof(Unit));
        put_unit(size_at, static_cast<LONG>(size + sizeof(Unit)));
    }

    const std::byte* next_;
    const std::byte* end_;
    const DialogChanges& changes_;
    DialogCopy& copy_;
    std::size_t text_size_ = 0;     // bytes of the text read last, with its zero
    Vector<wchar_t> straight_text_; // a copy of that text, when it stands at an odd address
    bool sound_ = true;
    bool has_creation_data_ = false;
    bool readings_agree_ = true;
};

bool is_extended(const void* data, std::size_t size) noexcept {
    constexpr Unit kMark[] = {1, 0xFFFF}; // version, signature
    return size >= sizeof kMark && std::memcmp(data, kMark, sizeof kMark) == 0;
}

} // namespace

bool translate_dialog_template(const void* data, std::size_t size, const DialogChanges& changes,
                               DialogCopy& copy) {
    if (is_extended(data, size))
        return Rewriter<kExtended>(data, size, changes, copy).run(CreationSize::alone);
    CreationSize reading = CreationSize::alone;
    {
        Rewriter<kPlain> rewriter(data, size, changes, copy);
        if (rewriter.run(CreationSize::with_itself)) {
            if (!rewriter.has_creation_data() || !rewriter.readings_agree()) return true;
            reading = CreationSize::either;
        }
    }
    return Rewriter<kPlain>(data, size, changes, copy).run(reading);
}

} // namespace qzr
