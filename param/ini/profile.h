// The platform's private profiles, and nothing else of the library calls them. All texts are narrow; files
// are opened, read or written and closed by each call. Failures are not reported: what cannot be read is not
// there, and what cannot be written is dropped.
#pragma once

#include "core/allocator.h"
#include "qzstring.h"

namespace qzr {

// What the platform hands out fits this many bytes, terminators included; the rest is cut off.
constexpr unsigned kProfileRoom = 64000;

// Names, or lines, that the platform listed.
class ProfileNames {
public:
    // The next name, or null at the end. It lives as long as the list.
    const char* next() noexcept;

    bool empty() const noexcept { return end_ == 0; }
    bool cut() const noexcept { return end_ + 2 >= kProfileRoom; } // there may be more
    bool refused() const noexcept { return refused_; }             // another program has the file to itself

    // Whether the platform listed the same, wherever next() is.
    bool same_as(const ProfileNames& other) const noexcept;

private:
    friend class Profile;
    ProfileNames(Vector<char> bytes, unsigned end, bool refused)
        : bytes_(std::move(bytes)), end_(end), refused_(refused) {}

    Vector<char> bytes_; // ends with a zero
    unsigned at_ = 0;
    unsigned end_;
    bool refused_;
};

// The narrow name of a file. What the system's code page lacks becomes a "?", which no file's name holds: a
// similar letter could make it the name of another file. Throws CXMemException.
CXString profile_name(const wchar_t* file);

// A file of sections, which hold keys, which have texts. Names match without regard to case. Functions that
// read throw CXMemException.
class Profile {
public:
    // The name stays the caller's, and as it is.
    explicit Profile(const char* file) noexcept : file_(file) {}

    ProfileNames sections() const { return list(nullptr); }

    // A section exists while it has a key.
    ProfileNames keys(const char* section) const { return list(section); }

    // "key=text" for each line of a section. A key stands there as often as in the file, and without "="
    // where that is missing, while the list of keys lacks it.
    ProfileNames lines(const char* section) const;

    // Stores the text in text, with its terminator, and returns its length.
    unsigned read(const char* section, const char* key, Vector<char>& text) const;

    void write(const char* section, const char* key, const char* text) const noexcept;
    void remove_key(const char* section, const char* key) const noexcept { write(section, key, nullptr); }
    void remove_section(const char* section) const noexcept { write(section, nullptr, nullptr); }

private:
    ProfileNames list(const char* section) const;
    unsigned get(const char* section, const char* key, unsigned room, Vector<char>& text) const;

    const char* file_;
};

} // namespace qzr
