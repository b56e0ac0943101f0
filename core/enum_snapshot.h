// Enumerators over copies: what they hand out stays valid as long as they live, whatever happens to its
// source.
#pragma once

#include "core/allocator.h"
#include "qzexception.h"
#include "qzref.h"

#include <string>

namespace qzr {

// The cursor over a list of fixed length, for enumerators of every kind. A subclass says how long the list is
// and what stands where.
template <class T>
class EnumByIndex : public CQZUnknownImpl<CTEnum<T>> {
public:
    int Next(int count, T* items, unsigned* fetched) override {
        unsigned handed_out = 0;
        if (items != nullptr) {
            for (; count > 0 && cursor_ < length(); --count)
                items[handed_out++] = item(cursor_++);
        }
        if (fetched != nullptr) *fetched = handed_out;
        return handed_out != 0 ? 1 : 0;
    }

    int Skip(unsigned count) override {
        cursor_ = count < length() - cursor_ ? cursor_ + count : length();
        return 1;
    }

    void Reset() override { cursor_ = 0; }

protected:
    virtual unsigned length() const = 0;
    virtual T item(unsigned index) const = 0; // below length()

private:
    unsigned cursor_ = 0; // at most length()
};

// Names, copied while the enumerator is being filled.
template <class Char>
class NameSnapshot final : public EnumByIndex<const Char*> {
public:
    // Throws CXMemException. No more once the first name was handed out.
    void add(const Char* name) {
        const std::size_t start = text_.size();
        text_.insert(text_.end(), name, name + std::char_traits<Char>::length(name) + 1);
        starts_.push_back(start);
    }

    // An empty one with a reference for the caller. Throws CXMemException.
    static CQZRef<NameSnapshot> make() {
        auto* const made = new (std::nothrow) NameSnapshot;
        if (made == nullptr) throw CXMemException();
        return CQZRef<NameSnapshot>::Adopt(made);
    }

private:
    NameSnapshot() = default;

    unsigned length() const override { return static_cast<unsigned>(starts_.size()); }
    const Char* item(unsigned index) const override { return text_.data() + starts_[index]; }

    Vector<Char> text_; // each name with its terminator
    Vector<std::size_t> starts_;
};

} // namespace qzr
