/// @file
/// CQZRef: the counted pointer. Header-only; the library and its callers use the same one.
#pragma once

#include "qzexception.h"
#include "qzunknown.h"

/// Holds one reference of an interface I, or nothing.
///
/// A raw pointer becomes a reference in one of two named ways: Adopt takes over the reference that the
/// pointer already carries (from a factory, an out-parameter), Share adds one (from a borrowed pointer).
template <class I>
class CQZRef {
public:
    CQZRef() noexcept : m_p(nullptr) {}                  ///< nothing
    CQZRef(decltype(nullptr)) noexcept : m_p(nullptr) {} ///< nothing
    /// Adds a reference.
    CQZRef(const CQZRef& other) : m_p(other.m_p) {
        if (m_p != nullptr) m_p->AddRef();
    }
    /// Takes the reference over and leaves other empty.
    CQZRef(CQZRef&& other) noexcept : m_p(other.m_p) { other.m_p = nullptr; }
    /// Releases what was held.
    CQZRef& operator=(CQZRef other) noexcept { // by value: serves copies and moves
        I* mine = m_p;
        m_p = other.m_p;
        other.m_p = mine;
        return *this;
    }
    /// Releases what is held.
    ~CQZRef() {
        if (m_p != nullptr) m_p->Release();
    }

    /// Takes over the reference that p carries; p may be null.
    static CQZRef Adopt(I* p) noexcept {
        CQZRef ref;
        ref.m_p = p;
        return ref;
    }

    /// Adds a reference to a borrowed pointer; p may be null.
    static CQZRef Share(I* p) {
        if (p != nullptr) p->AddRef();
        return Adopt(p);
    }

    /// Asks any object for I. @return the interface, or nothing when it (or object) is not there
    static CQZRef Query(IQZUnknown* object) {
        IQZUnknown* found = nullptr;
        if (object != nullptr && object->QueryInterface(typeid(I), &found) == 0) found = nullptr;
        return Adopt(static_cast<I*>(found));
    }

    /// The same for an interface that must be there. Throws CXIFaceException when it is not.
    static CQZRef Require(IQZUnknown* object) {
        CQZRef ref = Query(object);
        if (!ref) throw CXIFaceException(typeid(I));
        return ref;
    }

    I* Get() const noexcept { return m_p; }        ///< @return the pointer, still the holder's; or null
    I* operator->() const noexcept { return m_p; } ///< @return the pointer; not of an empty holder
    I& operator*() const noexcept { return *m_p; } ///< @return the interface; not of an empty holder
    explicit operator bool() const noexcept { return m_p != nullptr; } ///< @return whether it holds one

    /// Gives the reference away. @return the pointer, which the caller now releases
    I* Detach() noexcept {
        I* p = m_p;
        m_p = nullptr;
        return p;
    }

    /// Drops the reference.
    void Reset() noexcept { *this = CQZRef(); }

    /// For functions that return through an out-parameter: what was held is dropped, and what the function
    /// stores is adopted.
    I** Put() noexcept {
        Reset();
        return &m_p;
    }

private:
    I* m_p;
};

/// @return whether both hold the same pointer, or nothing
template <class I>
bool operator==(const CQZRef<I>& a, const CQZRef<I>& b) noexcept {
    return a.Get() == b.Get();
}
/// @return whether they hold different pointers
template <class I>
bool operator!=(const CQZRef<I>& a, const CQZRef<I>& b) noexcept {
    return a.Get() != b.Get();
}
