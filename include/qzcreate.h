/// @file
/// Objects by class name, as typed references: qz::create. Header-only.
#pragma once

#include "qzobject.h"
#include "qzref.h"
#include "qztext.h"

namespace qz {

/// Creates an object of a registered class.
/// @return the object; nothing when the class is not known, cannot be made, or lacks the interface. Throws
///         what its factory throws.
template <class I>
CQZRef<I> create(TextArg class_name) {
    IQZUnknown* made = nullptr;
    if (CreateObject(class_name.c_str(), nullptr, typeid(I), &made) == 0) return nullptr;
    return CQZRef<I>::Adopt(static_cast<I*>(made));
}

/// @return a new service container, of the library's own class. Throws CXIFaceException when it cannot be
///         made.
inline CQZRef<IQZServiceContainer> new_service_container() {
    auto container = create<IQZServiceContainer>("CLSID_OFSERVICECONTAINER");
    if (!container) throw CXIFaceException(typeid(IQZServiceContainer));
    return container;
}

} // namespace qz
