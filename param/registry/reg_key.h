// Keys of the registry, and nothing else of the library calls it. Names are narrow; those of sub-keys may be
// paths.
#pragma once

#include "core/win_handle.h"
#include "param/tree_walk.h"

namespace qzr {

struct RegistryKeyTraits {
    using Handle = HKEY;
    static constexpr Handle kInvalid = nullptr;
    static void close(Handle key) noexcept { RegCloseKey(key); }
};

// The data of a value. Two zero bytes follow it: a stored text need not end with its terminator.
class RegData {
public:
    RegData() noexcept : bytes_(near_) {}
    RegData(const RegData&) = delete;
    RegData& operator=(const RegData&) = delete;

    unsigned type() const { return type_; }
    unsigned size() const { return size_; }
    const char* bytes() const { return bytes_; }

private:
    friend class RegKey;

    unsigned type_ = 0;
    unsigned size_ = 0;
    char* bytes_;
    char near_[256]; // most data fit, and cost one call
    Vector<char> far_;
};

// An open key with all access, or none. What the system refuses is a key without a handle, false, or nothing:
// callers are not told why.
class RegKey {
public:
    RegKey() noexcept = default;

    // Below HKEY_CURRENT_USER or HKEY_LOCAL_MACHINE.
    static RegKey open_below(HKEY root, const wchar_t* path) noexcept;

    explicit operator bool() const noexcept { return static_cast<bool>(key_); }

    // The empty name names no key: to the system it is this one.
    RegKey open(const char* name) const noexcept;

    // The same, unless the key is a link to another.
    RegKey open_unless_link(const char* name) const noexcept;

    // Also opens what exists already, and tells.
    RegKey create(const char* name, bool& existed) const noexcept;
    void delete_key(const char* name) const noexcept;  // one without sub-keys
    void delete_link(const char* name) const noexcept; // and not what it leads to; nothing else

    // Names as they were at once, longer ones than 512 characters ending the list. Throw CXMemException.
    NameEnum key_names() const;
    NameEnum value_names() const;

    // A null name is the same as the empty one, the key's default value. Throws CXMemException.
    bool read(const char* name, RegData& data) const;
    void write(const char* name, unsigned type, const void* data, std::size_t size) const noexcept;
    void write(const wchar_t* name, unsigned type, const void* data, std::size_t size) const noexcept;
    void delete_value(const char* name) const noexcept;

private:
    explicit RegKey(HKEY key) noexcept : key_(key) {}
    RegKey open_with(const char* name, DWORD options) const noexcept;
    bool is_link() const noexcept; // when it was opened as one

    WinHandle<RegistryKeyTraits> key_;
};

} // namespace qzr
