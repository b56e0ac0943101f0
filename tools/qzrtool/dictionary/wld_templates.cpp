// Texts in the templates of string tables, menus and dialogs. The bytes come from files, so none is trusted.
#include "dictionary/wld_resources.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace tool {

namespace {

// Reads from left to right; past the end everything is 0 and sound() is false for good.
class Cursor {
public:
    explicit Cursor(const std::string& bytes) : bytes_(bytes) {}

    bool sound() const { return sound_; }
    bool at_end() const { return at_ >= bytes_.size(); }

    std::uint16_t word() { return read<std::uint16_t>(); }
    std::uint16_t peek() const { return Cursor(*this).word(); }
    std::uint32_t dword() { return read<std::uint32_t>(); }

    void skip(std::size_t n) {
        sound_ = sound_ && n <= bytes_.size() - at_;
        if (sound_) at_ += n;
    }
    void align() { skip(std::min((4 - at_ % 4) % 4, bytes_.size() - at_)); }

    std::wstring text() {
        std::wstring text;
        while (const std::uint16_t unit = word())
            text += static_cast<wchar_t>(unit);
        return text;
    }
    std::wstring text(std::size_t units) {
        std::wstring text;
        while (sound_ && text.size() < units)
            text += static_cast<wchar_t>(word());
        return text;
    }

    /// A text, or the mark of a number and the number, for which it is empty.
    std::wstring text_or_number() {
        constexpr std::uint16_t kNumberMark = 0xFFFF;
        const std::uint16_t first = word();
        if (first == kNumberMark) {
            word();
            return {};
        }
        return first != 0 ? static_cast<wchar_t>(first) + text() : std::wstring();
    }

private:
    template <class T>
    T read() {
        T value = 0;
        if (sizeof value > bytes_.size() - at_) sound_ = false;
        if (!sound_) return 0;
        std::memcpy(&value, bytes_.data() + at_, sizeof value);
        at_ += sizeof value;
        return value;
    }

    const std::string& bytes_;
    std::size_t at_ = 0;
    bool sound_ = true;
};

void add(std::vector<std::wstring>& texts, std::wstring text) {
    if (!text.empty()) texts.push_back(std::move(text));
}

constexpr unsigned kLast = 0x80;

bool texts_of_plain_menu(Cursor& cursor, std::vector<std::wstring>& texts) {
    constexpr unsigned kHasSubMenu = 0x10;
    cursor.skip(cursor.word());
    std::vector<bool> last_of_outer; // of each open menu but the outermost: was its item the last one
    while (cursor.sound()) {
        const unsigned flags = cursor.word();
        if ((flags & kHasSubMenu) == 0) cursor.word(); // the command
        std::wstring text = cursor.text();
        if (!cursor.sound()) break;
        add(texts, std::move(text));
        bool last = (flags & kLast) != 0;
        if ((flags & kHasSubMenu) != 0) {
            last_of_outer.push_back(last);
            continue;
        }
        while (last && !last_of_outer.empty()) {
            last = last_of_outer.back();
            last_of_outer.pop_back();
        }
        if (last) return true;
    }
    return false;
}

bool texts_of_extended_menu(Cursor& cursor, std::vector<std::wstring>& texts) {
    constexpr unsigned kHasSubMenu = 0x01;
    cursor.skip(cursor.word()); // counted from behind itself; the help identifier is in it
    std::vector<bool> last_of_outer;
    while (cursor.sound()) {
        cursor.align();
        cursor.skip(12); // type, state, command
        const unsigned flags = cursor.word();
        std::wstring text = cursor.text();
        if (!cursor.sound()) break;
        add(texts, std::move(text));
        bool last = (flags & kLast) != 0;
        if ((flags & kHasSubMenu) != 0) {
            cursor.align();
            cursor.skip(4); // the help identifier
            last_of_outer.push_back(last);
            continue;
        }
        while (last && !last_of_outer.empty()) {
            last = last_of_outer.back();
            last_of_outer.pop_back();
        }
        if (last) return true;
    }
    return false;
}

// Both layouts of dialogs, by the sizes in bytes of what is of no interest here.
struct DialogLayout {
    std::size_t to_style, to_count; // to the style; from behind it to the number of items
    std::size_t to_menu;            // from behind that number
    std::size_t font;               // between the point size and the face
    std::size_t item;
    std::size_t size_of_itself; // what the size of an item's creation data counts besides the data
};
constexpr DialogLayout kPlain = {0, 4, 8, 0, 18, 2};
constexpr DialogLayout kPlainOfOtherTools = {0, 4, 8, 0, 18, 0};
constexpr DialogLayout kExtended = {12, 0, 8, 4, 24, 0};

bool texts_of_dialog(Cursor cursor, const DialogLayout& layout, std::vector<std::wstring>& texts) {
    constexpr std::uint32_t kHasFont = 0x40;
    constexpr unsigned kMessageBoxFont = 0x7FFF; // a point size that stands for a font, without a face
    cursor.skip(layout.to_style);
    const std::uint32_t style = cursor.dword();
    cursor.skip(layout.to_count);
    const unsigned items = cursor.word();
    cursor.skip(layout.to_menu);
    cursor.text_or_number(); // menu
    cursor.text_or_number(); // class
    add(texts, cursor.text());
    if ((style & kHasFont) != 0 && cursor.word() != kMessageBoxFont) {
        cursor.skip(layout.font);
        cursor.text();
    }
    for (unsigned i = 0; i < items && cursor.sound(); ++i) {
        cursor.align();
        cursor.skip(layout.item);
        if (cursor.peek() == 0) return false; // every control has a class
        cursor.text_or_number();
        std::wstring text = cursor.text_or_number();
        if (!cursor.sound()) break;
        add(texts, std::move(text));
        const std::size_t data = cursor.word();
        if (data == 0) continue;
        if (data < layout.size_of_itself) return false;
        cursor.skip(data - layout.size_of_itself);
    }
    return cursor.sound();
}

} // namespace

bool texts_of_strings(const std::string& bytes, std::vector<std::wstring>& texts) {
    constexpr int kStrings = 16;
    Cursor cursor(bytes);
    for (int i = 0; i < kStrings && cursor.sound(); ++i) {
        std::wstring text = cursor.text(cursor.word());
        if (cursor.sound()) add(texts, std::move(text));
    }
    return cursor.sound();
}

bool texts_of_menu(const std::string& bytes, std::vector<std::wstring>& texts) {
    Cursor cursor(bytes);
    switch (cursor.word()) {
    case 0:
        return texts_of_plain_menu(cursor, texts);
    case 1:
        return texts_of_extended_menu(cursor, texts);
    default:
        return false;
    }
}

bool texts_of_dialog(const std::string& bytes, std::vector<std::wstring>& texts) {
    Cursor signature(bytes);
    const bool extended = signature.word() == 1 && signature.word() == 0xFFFF;
    if (extended) return texts_of_dialog(Cursor(bytes), kExtended, texts);
    const std::size_t before = texts.size();
    if (texts_of_dialog(Cursor(bytes), kPlain, texts)) return true;
    std::vector<std::wstring> others;
    if (!texts_of_dialog(Cursor(bytes), kPlainOfOtherTools, others)) return false;
    texts.resize(before);
    std::move(others.begin(), others.end(), std::back_inserter(texts));
    return true;
}

} // namespace tool
