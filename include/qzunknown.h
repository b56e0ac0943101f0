/// @file
/// The root of the component model: IQZUnknown, enumerators, and the templates that objects are built from.
///
/// **Ownership.** A new object starts with one reference, which belongs to its creator. Every pointer that
/// comes from a factory, from QueryInterface, or from a function documented as returning a new reference is
/// released exactly once by whoever holds it. CQZRef (qzref.h) does that by itself.
///
/// **Threads.** Reference counts are plain integers: threads that share an object keep their own AddRef and
/// Release calls apart.
#pragma once

#include "qzexport.h"

/// The root interface. Every object that the library hands out is reached through an interface derived from
/// it; derivation is always single, so these three slots come first in every interface.
class IQZUnknown {
public:
    /// Adds a reference. @return the new count (the aggregate wrapper alone answers the old one)
    virtual unsigned AddRef() = 0;

    /// Gives up a reference; at zero the object is destroyed. @return the new count
    virtual unsigned Release() = 0;

    /// Asks the object for another of its interfaces.
    /// @param iid the interface, as `typeid(IXStream)`; compared by name, so ids of other modules match
    /// @param out receives the pointer with one reference for the caller, or null; it may itself be null,
    ///            then the call only asks and adds no reference
    /// @return 1 when the object has the interface, else 0
    virtual int QueryInterface(const std::type_info& iid, IQZUnknown** out) = 0;

protected:
    ~IQZUnknown() = default; // never deleted through this class
};

/// An enumerator over items of type T. The items belong to the enumerator: they stay valid as long as it
/// lives, whatever happens meanwhile to the object that it came from (interface pointers excepted: those
/// carry a reference for the caller). Instances exist for char*, const char*, const wchar_t* and IQZUnknown*.
///
/// Callers loop `while (e->Next(1, &item, nullptr))` and then `e->Release()`.
template <class T>
class CTEnum : public IQZUnknown {
public:
    /// Hands out up to count items and moves on by as many.
    /// @param items   room for count items; null answers 0
    /// @param fetched receives the number handed out, when not null
    /// @return 1 when at least one item was handed out; 0 at the end and for a count below 1
    virtual int Next(int count, T* items, unsigned* fetched) = 0;

    /// Moves on by count items without looking; past the end a later Next finds nothing. @return 1
    virtual int Skip(unsigned count) = 0;

    /// Goes back to the first item.
    virtual void Reset() = 0;

    virtual ~CTEnum() = default;
};

/// The usual implementation of one interface I: counting, and answering for IQZUnknown and I.
///
/// Slots: the three of IQZUnknown, those of I, the destructor pair (the compiler gives a virtual destructor
/// two slots), then InternalAddRef, InternalRelease, InternalQueryInterface. The first three only forward to
/// the last three, through the virtual table, so a class that offers more interfaces overrides
/// InternalQueryInterface, and one with a lifetime of its own overrides the root slots.
template <class I>
class CQZUnknownImpl : public I {
public:
    unsigned AddRef() override;  ///< InternalAddRef
    unsigned Release() override; ///< InternalRelease
    /// InternalQueryInterface.
    int QueryInterface(const std::type_info& iid, IQZUnknown** out) override;

    virtual ~CQZUnknownImpl();

    /// Adds one to the count. @return the new count
    virtual unsigned InternalAddRef();

    /// Takes one from the count and deletes the object at zero; the count is held at one meanwhile, so that
    /// objects that the destructor lets go of may count this one. @return the new count
    virtual unsigned InternalRelease();

    /// Answers this object for IQZUnknown and for I.
    virtual int InternalQueryInterface(const std::type_info& iid, IQZUnknown** out);

protected:
    CQZUnknownImpl() : m_cRef(1) {}
    CQZUnknownImpl(const CQZUnknownImpl&) = delete;
    CQZUnknownImpl& operator=(const CQZUnknownImpl&) = delete;

    /// Stores a query's answer and adds the caller's reference. @return 1 when found is not null
    static int AnswerQuery(IQZUnknown* found, IQZUnknown** out);

    unsigned m_cRef; ///< 1 at birth: the creator's reference
};

template <class I>
CQZUnknownImpl<I>::~CQZUnknownImpl() = default;

template <class I>
unsigned CQZUnknownImpl<I>::AddRef() {
    return InternalAddRef();
}

template <class I>
unsigned CQZUnknownImpl<I>::Release() {
    return InternalRelease();
}

template <class I>
int CQZUnknownImpl<I>::QueryInterface(const std::type_info& iid, IQZUnknown** out) {
    return InternalQueryInterface(iid, out);
}

template <class I>
unsigned CQZUnknownImpl<I>::InternalAddRef() {
    return ++m_cRef;
}

template <class I>
unsigned CQZUnknownImpl<I>::InternalRelease() {
    const unsigned left = --m_cRef;
    if (left == 0) {
        m_cRef = 1; // what the destructor lets go of may count this object once more
        delete this;
    }
    return left;
}

template <class I>
int CQZUnknownImpl<I>::InternalQueryInterface(const std::type_info& iid, IQZUnknown** out) {
    const bool known = iid == typeid(I) || iid == typeid(IQZUnknown);
    return AnswerQuery(known ? this : nullptr, out);
}

template <class I>
int CQZUnknownImpl<I>::AnswerQuery(IQZUnknown* found, IQZUnknown** out) {
    if (out != nullptr) {
        *out = found;
        if (found != nullptr) found->AddRef();
    }
    return found != nullptr ? 1 : 0;
}

/// The same for an interface I that is derived from J: answers for IQZUnknown, J and I.
template <class I, class J>
class CQZUnknownImplParent : public CQZUnknownImpl<I> {
public:
    int InternalQueryInterface(const std::type_info& iid, IQZUnknown** out) override;
};

template <class I, class J>
int CQZUnknownImplParent<I, J>::InternalQueryInterface(const std::type_info& iid, IQZUnknown** out) {
    if (iid == typeid(J)) return CQZUnknownImpl<I>::AnswerQuery(this, out);
    return CQZUnknownImpl<I>::InternalQueryInterface(iid, out);
}

/// An object that lives inside another and is controlled by it: the root operations go to the controlling
/// unknown, no count is kept here. T must implement its interface, named `T::Interface`, and leave the root
/// operations abstract.
template <class T>
class CQZContainedObject : public T {
public:
    /// @param controlling not counted: it outlives this object
    explicit CQZContainedObject(IQZUnknown* controlling) : m_pControlling(controlling) {}

    unsigned AddRef() override { return m_pControlling->AddRef(); }   ///< the controlling unknown's
    unsigned Release() override { return m_pControlling->Release(); } ///< the controlling unknown's
    /// The controlling unknown's.
    int QueryInterface(const std::type_info& iid, IQZUnknown** out) override {
        return m_pControlling->QueryInterface(iid, out);
    }

private:
    IQZUnknown* m_pControlling; // not counted: it outlives this object
};

/// The non-delegating unknown around a contained object: it holds the count and lets the outer object reach
/// the inner interface.
template <class T>
class CQZAggObject : public IQZUnknown {
public:
    /// @param outer the object that aggregates this one, or null when it stands alone
    explicit CQZAggObject(IQZUnknown* outer) : m_cRef(1), m_contained(outer != nullptr ? outer : this) {}

    /// Adds a reference. @return the count as it was before: unlike every other object, and relied upon
    unsigned AddRef() override { return m_cRef++; }

    /// Gives up a reference; at zero the object is destroyed. Until the destructors are through the count is
    /// held at one, so that objects that are let go of may count this one. @return the new count
    unsigned Release() override {
        const unsigned left = --m_cRef;
        if (left == 0) {
            m_cRef = 1;
            delete this;
        }
        return left;
    }

    /// Answers the wrapper for IQZUnknown and the contained object for its interface. *out is set to null
    /// first; with a null out nothing is referenced.
    int QueryInterface(const std::type_info& iid, IQZUnknown** out) override {
        if (out != nullptr) *out = nullptr;
        IQZUnknown* found = nullptr;
        if (iid == typeid(IQZUnknown)) {
            found = this;
        } else if (iid == typeid(typename T::Interface)) {
            found = static_cast<typename T::Interface*>(&m_contained);
        }
        if (found == nullptr) return 0;
        if (out != nullptr) {
            *out = found;
            found->AddRef();
        }
        return 1;
    }

    virtual ~CQZAggObject() = default;

    CQZAggObject(const CQZAggObject&) = delete;
    CQZAggObject& operator=(const CQZAggObject&) = delete;

protected:
    /// @return the object within: for a derived class's destructor, which may have it let go of others while
    ///         all of its operations still answer
    T& Contained() noexcept { return m_contained; }

private:
    unsigned m_cRef;
    CQZContainedObject<T> m_contained;
};

/// The inner unknown that an aggregatable object embeds. It counts, answers for IQZUnknown and is never
/// destroyed by its count: it is part of the object around it.
class QZR_API CUnknownInternal final : public IQZUnknown {
public:
    CUnknownInternal() : m_cRef(0) {}
    unsigned AddRef() override;
    unsigned Release() override;
    int QueryInterface(const std::type_info& iid, IQZUnknown** out) override;

private:
    unsigned m_cRef;
};

/// Named properties of an object, as variants. The library implements it nowhere; applications do.
class IQZProperty : public IQZUnknown {
public:
    /// @param out cleared and filled with a copy of the value; untouched when there is none. @return 1 or 0
    virtual int GetProperty(const char* name, struct tagQZVARIANT* out) = 0;
    /// Stores a copy of the value. @return 1, or 0 when the object does not take it
    virtual int SetProperty(const char* name, const struct tagQZVARIANT* value) = 0;

protected:
    ~IQZProperty() = default;
};

/// A directory of further interfaces that an object answers for in QueryInterface. Parameter nodes have one,
/// and offer it themselves: query a node for `typeid(IRegisterIface)`.
class IRegisterIface : public IQZUnknown {
public:
    /// Makes the object answer iid with iface. The pointer is not counted: whoever registers it keeps it
    /// alive until it is unregistered or the object is gone. @return 1, or 0 when iid is taken or iface null
    virtual int RegisterIface(const std::type_info& iid, IQZUnknown* iface) = 0;
    /// Takes an interface out again. @return 1, or 0 when it was not registered
    virtual int UnregisterIface(const std::type_info& iid) = 0;

protected:
    ~IRegisterIface() = default;
};
