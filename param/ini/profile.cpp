#include "param/ini/profile.h"

#include "core/system_error.h"
#include "core/windows_lean.h"
#include "qzexception.h"
#include "string/scan.h"

#include <algorithm>
#include <climits>
#include <string_view>

namespace qzr {

namespace {

// The platform turns each text into a counted one of 16 bits: a longer text would be cut short, be lost, or
// make it read where nothing is.
constexpr int kMostCharacters = 32766;

constexpr unsigned kFirstRoom = 4096;

bool fits(const char* text) {
    if (text == nullptr) return true;
    const std::size_t size = text_length(text);
    if (size <= kMostCharacters) return true;
    if (size > 2 * std::size_t{kMostCharacters}) return false; // with two bytes in each character
    return MultiByteToWideChar(CP_ACP, 0, text, static_cast<int>(size), nullptr, 0) <= kMostCharacters;
}

bool refused(DWORD error) { return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION; }

} // namespace

CXString profile_name(const wchar_t* file) {
    const DWORD flags = GetACP() != CP_UTF8 ? WC_NO_BEST_FIT_CHARS : 0; // which lacks nothing
    constexpr std::size_t kMostBytes = 4;                               // of a character
    const std::size_t units = text_length(file) + 1;
    if (units > INT_MAX / kMostBytes) throw CXMemException();
    Vector<char> name(units * kMostBytes);
    WideCharToMultiByte(CP_ACP, flags, file, static_cast<int>(units), name.data(),
                        static_cast<int>(name.size()), nullptr, nullptr);
    return CXString(name.data());
}

const char* ProfileNames::next() noexcept {
    while (at_ < end_) {
        const char* const name = bytes_.data() + at_;
        at_ += static_cast<unsigned>(text_length(name)) + 1;
        if (*name != '\0') return name;
    }
    return nullptr;
}

bool ProfileNames::same_as(const ProfileNames& other) const noexcept {
    return std::string_view(bytes_.data(), end_) == std::string_view(other.bytes_.data(), other.end_);
}

unsigned Profile::get(const char* section, const char* key, unsigned room, Vector<char>& text) const {
    text.assign(room, '\0');
    const DWORD got = GetPrivateProfileStringA(section, key, "", text.data(), room, file_);
    const unsigned size = std::min<unsigned>(got, room - 1);
    text[size] = '\0';
    return size;
}

// Most texts are short, and making all the room ready costs more than finding one.
unsigned Profile::read(const char* section, const char* key, Vector<char>& text) const {
    text.assign(1, '\0');
    if (!fits(section) || !fits(key) || !fits(file_)) return 0;
    const unsigned size = get(section, key, kFirstRoom, text);
    const bool cut = size + 2 >= kFirstRoom; // there may be more
    return cut ? get(section, key, kProfileRoom, text) : size;
}

ProfileNames Profile::list(const char* section) const {
    Vector<char> names;
    SetLastError(ERROR_SUCCESS);
    const unsigned size = read(section, nullptr, names);
    return {std::move(names), size, size == 0 && refused(last_error())};
}

ProfileNames Profile::lines(const char* section) const {
    Vector<char> lines(kProfileRoom);
    unsigned size = 0;
    if (fits(section) && fits(file_))
        size = GetPrivateProfileSectionA(section, lines.data(), kProfileRoom, file_);
    size = std::min(size, kProfileRoom - 1);
    lines[size] = '\0';
    return {std::move(lines), size, false};
}

void Profile::write(const char* section, const char* key, const char* text) const noexcept {
    if (fits(section) && fits(key) && fits(text) && fits(file_))
        WritePrivateProfileStringA(section, key, text, file_);
}

} // namespace qzr
