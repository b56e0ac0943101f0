#include "param/registry/reg_key.h"

#include "core/enum_snapshot.h"

#include <limits>

namespace qzr {

namespace {

constexpr DWORD kNameRoom = 513; // characters with the terminator

// Data that grow between two queries are asked for again, but not forever.
constexpr int kMostQueries = 8;

constexpr std::size_t kMostData = std::numeric_limits<DWORD>::max();

bool is_empty(const char* name) { return name == nullptr || *name == '\0'; }

const BYTE* as_bytes(const void* data) { return static_cast<const BYTE*>(data); }

// get(index, buffer, room) fetches one name and answers 0 for success. The first failure, a name without room
// too, is the end.
template <class Get>
NameEnum snapshot(Get get) {
    CQZRef<NameSnapshot<char>> names = NameSnapshot<char>::make();
    char buffer[kNameRoom];
    for (DWORD index = 0;; ++index) {
        DWORD room = kNameRoom;
        if (get(index, buffer, &room) != ERROR_SUCCESS) break;
        names->add(buffer);
    }
    return NameEnum::Adopt(names.Detach());
}

} // namespace

// --- keys ----------------------------------------------------------------------------------------------

RegKey RegKey::open_below(HKEY root, const wchar_t* path) noexcept {
    HKEY opened = nullptr;
    return RegOpenKeyExW(root, path, 0, KEY_ALL_ACCESS, &opened) == ERROR_SUCCESS ? RegKey(opened) : RegKey();
}

RegKey RegKey::open_with(const char* name, DWORD options) const noexcept {
    HKEY opened = nullptr;
    if (is_empty(name)) return RegKey();
    if (RegOpenKeyExA(key_.get(), name, options, KEY_ALL_ACCESS, &opened) != ERROR_SUCCESS) return RegKey();
    return RegKey(opened);
}

RegKey RegKey::open(const char* name) const noexcept { return open_with(name, 0); }

RegKey RegKey::open_unless_link(const char* name) const noexcept {
    RegKey key = open_with(name, REG_OPTION_OPEN_LINK);
    return key && !key.is_link() ? std::move(key) : RegKey();
}

bool RegKey::is_link() const noexcept {
    DWORD type = REG_NONE;
    return RegQueryValueExA(key_.get(), "SymbolicLinkValue", nullptr, &type, nullptr, nullptr) ==
               ERROR_SUCCESS &&
           type == REG_LINK;
}

RegKey RegKey::create(const char* name, bool& existed) const noexcept {
    if (is_empty(name)) return RegKey();
    HKEY made = nullptr;
    DWORD disposition = 0;
    char no_class[] = "";
    const LSTATUS status = RegCreateKeyExA(key_.get(), name, 0, no_class, REG_OPTION_NON_VOLATILE,
                                           KEY_ALL_ACCESS, nullptr, &made, &disposition);
    if (status != ERROR_SUCCESS) return RegKey();
    existed = disposition == REG_OPENED_EXISTING_KEY;
    return RegKey(made);
}

void RegKey::delete_key(const char* name) const noexcept {
    if (!is_empty(name)) RegDeleteKeyA(key_.get(), name);
}

// By its own name the system may take a link for what it leads to; the empty name is the key that is open.
void RegKey::delete_link(const char* name) const noexcept {
    const RegKey link = open_with(name, REG_OPTION_OPEN_LINK);
    if (link && link.is_link()) RegDeleteKeyA(link.key_.get(), "");
}

NameEnum RegKey::key_names() const {
    return snapshot([this](DWORD index, char* name, DWORD* room) {
        return RegEnumKeyExA(key_.get(), index, name, room, nullptr, nullptr, nullptr, nullptr);
    });
}

// --- values --------------------------------------------------------------------------------------------

NameEnum RegKey::value_names() const {
    return snapshot([this](DWORD index, char* name, DWORD* room) {
        return RegEnumValueA(key_.get(), index, name, room, nullptr, nullptr, nullptr, nullptr);
    });
}

bool RegKey::read(const char* name, RegData& data) const {
    constexpr DWORD kTerminator = 2;
    DWORD room = sizeof data.near_ - kTerminator;
    data.bytes_ = data.near_;
    for (int query = 0; query < kMostQueries; ++query) {
        DWORD type = 0;
        DWORD size = room;
        const LSTATUS status =
            RegQueryValueExA(key_.get(), name, nullptr, &type, reinterpret_cast<BYTE*>(data.bytes_), &size);
        if (status == ERROR_SUCCESS && size <= room) {
            data.type_ = type;
            data.size_ = size;
            data.bytes_[size] = data.bytes_[size + 1] = '\0';
            return true;
        }
        if (status != ERROR_MORE_DATA) return false;
        room = size;
        data.far_.resize(std::size_t{room} + kTerminator);
        data.bytes_ = data.far_.data();
    }
    return false;
}

void RegKey::write(const char* name, unsigned type, const void* data, std::size_t size) const noexcept {
    if (size <= kMostData)
        RegSetValueExA(key_.get(), name, 0, type, as_bytes(data), static_cast<DWORD>(size));
}

void RegKey::write(const wchar_t* name, unsigned type, const void* data, std::size_t size) const noexcept {
    if (size <= kMostData)
        RegSetValueExW(key_.get(), name, 0, type, as_bytes(data), static_cast<DWORD>(size));
}

void RegKey::delete_value(const char* name) const noexcept { RegDeleteValueA(key_.get(), name); }

} // namespace qzr
