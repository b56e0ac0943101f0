/// @file
/// Enumerators as ranges: names, children and values of trees, elements of storages, services. Header-only.
///
/// @code
/// for (const auto& [name, value] : qz::values(*settings)) ...
/// @endcode
///
/// A range is walked once at a time: each begin() starts over, and all its iterators share one place. Names
/// and elements belong to the range; what is to live longer is copied. What a range has handed out stays
/// valid when the tree or storage is changed meanwhile; whether it shows the change is up to the backend.
#pragma once

#include "qzobject.h"
#include "qzparam.h"
#include "qzref.h"
#include "qzstream.h"
#include "qzvariant.h"

#include <cstddef>
#include <iterator>
#include <utility>

namespace qz {

/// A range over what a source hands out. A source has an Item, `bool next(Item&)`, which answers false at the
/// end, and `void reset()`. Neither the range nor the source is moved while it is walked.
template <class S>
class Range {
public:
    using Source = S;                   ///< where the elements come from
    using Item = typename Source::Item; ///< what the range consists of

    /// An input iterator; moving one on moves all of its range.
    class iterator {
    public:
        /// What the standard library asks of an iterator.
        ///@{
        using iterator_category = std::input_iterator_tag;
        using value_type = Item;
        using difference_type = std::ptrdiff_t;
        using pointer = const Item*;
        using reference = const Item&;
        ///@}

        iterator() noexcept : range_(nullptr) {}                           ///< the end of every range
        explicit iterator(Range* range) noexcept : range_(range) {}        ///< the place of a range
        const Item& operator*() const noexcept { return range_->item_; }   ///< @return the element
        const Item* operator->() const noexcept { return &range_->item_; } ///< @return the element
        iterator& operator++() {                                           ///< goes on by one
            if (!range_->source_.next(range_->item_)) range_ = nullptr;
            return *this;
        }
        void operator++(int) { ++*this; } ///< goes on by one; there is no way back to return
        /// @return whether both are at the end, or both are not
        friend bool operator==(const iterator& a, const iterator& b) noexcept { return a.range_ == b.range_; }
        /// @return whether one is at the end and the other is not
        friend bool operator!=(const iterator& a, const iterator& b) noexcept { return !(a == b); }

    private:
        Range* range_; // null at the end
    };

    explicit Range(Source source) : source_(std::move(source)), item_() {} ///< over a source

    /// Starts over. @return the first element. Throws what fetching it throws.
    iterator begin() {
        source_.reset();
        return ++iterator(this);
    }
    iterator end() noexcept { return iterator(); } ///< @return the end

private:
    Source source_;
    Item item_;
};

/// A source over an enumerator of names or other plain items.
template <class T>
class EnumSource {
public:
    using Item = T; ///< as the enumerator hands it out

    /// Takes the enumerator over. Throws CXIFaceException for null: a tree that gives no enumerator cannot be
    /// taken for an empty one.
    explicit EnumSource(CTEnum<T>* enumerator) : enumerator_(CQZRef<CTEnum<T>>::Adopt(enumerator)) {
        if (!enumerator_) throw CXIFaceException(typeid(CTEnum<T>));
    }
    bool next(T& item) {
        return enumerator_->Next(1, &item, nullptr) != 0;
    }                                      ///< fetches one. @return false at the end
    void reset() { enumerator_->Reset(); } ///< starts over

private:
    CQZRef<CTEnum<T>> enumerator_;
};

using Names = Range<EnumSource<const char*>>; ///< a range of names

/// @return the names of a node's children. Throws CXIFaceException when the node gives no enumerator.
inline Names child_names(IParam& node) { return Names(EnumSource<const char*>(node.EnumSubParams())); }
/// @return the names of a node's values. Throws CXIFaceException when the node gives no enumerator.
inline Names value_names(IParam& node) { return Names(EnumSource<const char*>(node.EnumValues())); }
/// @return the names of the storages in a storage. Throws CXException when they cannot be listed.
inline Names storage_names(IXStorage& storage) {
    return Names(EnumSource<const char*>(storage.EnumStorages()));
}
/// @return the names of the streams in a storage. Throws CXException when they cannot be listed.
inline Names stream_names(IXStorage& storage) {
    return Names(EnumSource<const char*>(storage.EnumStreams()));
}

/// What a named range consists of: a name, and what it leads to.
template <class T>
struct Named {
    const char* name = nullptr; ///< belongs to the range
    T item;                     ///< a reference or a value of the element's own
};

/// A source over names that opens what they name. Opener is called with the owner, the name and the element
/// to fill; it answers whether there is such an element, and what is not there is left out.
template <class Owner, class T, bool (*Opener)(Owner&, const char*, T&)>
class NamedSource {
public:
    using Item = Named<T>; ///< a name and what it leads to

    /// Adds a reference to the owner and takes the enumerator over.
    NamedSource(Owner& owner, CTEnum<const char*>* names)
        : owner_(CQZRef<Owner>::Share(&owner)), names_(names) {}
    /// Opens the next one, after letting go of the last. @return false at the end
    bool next(Item& named) {
        named.item = T();
        while (names_.next(named.name)) {
            if (Opener(*owner_, named.name, named.item)) return true;
        }
        return false;
    }
    void reset() { names_.reset(); } ///< starts over

private:
    CQZRef<Owner> owner_; // first: an enumerator of services must not outlive its container
    EnumSource<const char*> names_;
};

/// How the elements of the ranges below are opened.
namespace detail {

inline bool open_child(IParam& node, const char* name, CQZRef<IParam>& child) {
    child = CQZRef<IParam>::Adopt(node.OpenSubParam(name, 0));
    return static_cast<bool>(child);
}
inline bool read_value(IParam& node, const char* name, CQZVariant& value) {
    // Over a storage, empty texts and bytes are found with the answer 0.
    return node.GetValue(name, &value) != 0 || value.vt != QZVT_EMPTY;
}
inline bool open_storage(IXStorage& storage, const char* name, CQZRef<IXStorage>& child) {
    child = CQZRef<IXStorage>::Adopt(storage.OpenStorage(name));
    return true;
}
inline bool open_stream(IXStorage& storage, const char* name, CQZRef<IXStream>& stream) {
    stream = CQZRef<IXStream>::Adopt(storage.OpenStream(name));
    if (!stream) throw CXException(QZERR_OTHER);
    return true;
}
inline bool find_service(IQZServiceContainer& container, const char* name, CQZRef<IQZUnknown>& service) {
    return container.GetService(name, service.Put()) != 0;
}
inline CTEnum<const char*>* service_names(IQZServiceContainer& container) {
    IQZUnknown* names = nullptr;
    const int made = container.EnumServiceNames(&names);
    return made != 0 ? static_cast<CTEnum<const char*>*>(names) : nullptr;
}

} // namespace detail

using Children = Range<NamedSource<IParam, CQZRef<IParam>, detail::open_child>>;         ///< opened children
using Values = Range<NamedSource<IParam, CQZVariant, detail::read_value>>;               ///< values, copied
using Storages = Range<NamedSource<IXStorage, CQZRef<IXStorage>, detail::open_storage>>; ///< opened storages
using Streams = Range<NamedSource<IXStorage, CQZRef<IXStream>, detail::open_stream>>;    ///< opened streams

/// @return the children of a node, each with its name, opened one after the other. A name that does not open
///         (a section of an INI file that has none above it, a key without access) is left out. Throws
///         CXIFaceException when the node gives no enumerator.
inline Children children(IParam& node) { return Children(Children::Source(node, node.EnumSubParams())); }
/// @return the values of a node, each with its name, read one after the other. What the backend lists and
///         does not read as a value is left out. Throws CXIFaceException when the node gives no enumerator.
inline Values values(IParam& node) { return Values(Values::Source(node, node.EnumValues())); }

/// @return the storages in a storage, each with its name, opened one after the other. Throws CXException when
///         they cannot be listed, and in the loop when one does not open: none is passed over in silence.
inline Storages storages(IXStorage& storage) {
    return Storages(Storages::Source(storage, storage.EnumStorages()));
}
/// @return the streams in a storage, each with its name, opened one after the other. Throws CXException when
///         they cannot be listed, and in the loop QZERR_OTHER when one does not open.
inline Streams streams(IXStorage& storage) {
    return Streams(Streams::Source(storage, storage.EnumStreams()));
}

/// A source over the services of a container that have the interface I. It holds the container.
template <class I>
class ServiceSource {
public:
    using Item = CQZRef<I>; ///< a service

    /// Adds a reference to the container. Throws CXIFaceException when it gives no enumerator.
    explicit ServiceSource(IQZServiceContainer& container)
        : container_(CQZRef<IQZServiceContainer>::Share(&container)) {
        IQZUnknown* made = nullptr;
        if (container.EnumServices(typeid(I), &made) != 0)
            enumerator_ = CQZRef<Enum>::Adopt(static_cast<Enum*>(made));
        if (!enumerator_) throw CXIFaceException(typeid(Enum));
    }
    /// Fetches one. @return false at the end
    bool next(Item& service) {
        service = Item();
        IQZUnknown* found = nullptr;
        if (enumerator_->Next(1, &found, nullptr) == 0) return false;
        service = Item::Adopt(static_cast<I*>(found));
        return true;
    }
    void reset() { enumerator_->Reset(); } ///< starts over

private:
    using Enum = CTEnum<IQZUnknown*>;
    CQZRef<IQZServiceContainer> container_; // first, so that it outlives its enumerator
    CQZRef<Enum> enumerator_;
};

/// @return those services of a container that answer for I, in the order of the container
template <class I>
Range<ServiceSource<I>> services(IQZServiceContainer& container) {
    return Range<ServiceSource<I>>(ServiceSource<I>(container));
}

/// Services with their names.
using NamedServices = Range<NamedSource<IQZServiceContainer, CQZRef<IQZUnknown>, detail::find_service>>;

/// @return all services of a container, each with its name, in the order of the container. Throws
///         CXIFaceException when the container gives no enumerator.
inline NamedServices named_services(IQZServiceContainer& container) {
    return NamedServices(NamedServices::Source(container, detail::service_names(container)));
}

} // namespace qz
