/// @file
/// Parameter trees with typed values: qz::get and qz::set, paths, whole trees as bytes and texts.
/// Header-only.
///
/// **Paths.** In every name given to these functions "\" separates levels, also where the tree's own
/// operation takes a name in one node only (deleting, values of the registry), and all nodes on the way are
/// made: on an empty tree qz::set(tree, "a\\b\\v", 1) makes a, b in it and v in that, where SetValue makes b
/// alone. A name without "\" means the same as in the tree's own operations; so does an empty component.
///
/// **Names** are matched by a hash of 32 bits alone (qzparam.h): names that differ in five and more digits,
/// such as "value000123", do collide. Nest, or number with fewer digits.
///
/// **Wide texts** do not survive everywhere: streams in memory keep half of one, the registry and INI files
/// give narrow ones back. Prefer std::string, except over compound files.
#pragma once

#include "qzparam.h"
#include "qzrange.h"
#include "qzref.h"
#include "qzstream.h"
#include "qztext.h"
#include "qzvalue.h"

#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace qz {

/// @return a new, empty tree in memory. Throws CXMemException.
inline CQZRef<IParam> new_tree() {
    auto tree = CQZRef<IParam>::Adopt(new_MemParam());
    if (!tree) throw CXMemException();
    return tree;
}

// --------------------------------------------------------------------------------------------------- nodes

/// @return the node that a path leads to, or nothing when it is missing. Throws what the tree throws.
inline CQZRef<IParam> open(IParam& tree, TextArg path) {
    return CQZRef<IParam>::Adopt(tree.OpenSubParam(path.c_str(), 0));
}

/// The parts that the functions below are made of.
namespace detail {

/// A path of characters, not of bytes: the second byte of a character is no "\".
class Path {
public:
    explicit Path(const char* text) : text_(text) {}

    /// Cuts the first component off. @return false when there is none left
    bool take(CXString& component) {
        if (done_) return false;
        const int end = text_.Find(L'\\');
        done_ = end < 0;
        component = text_;
        if (done_) return true;
        component.Extract(0, end);
        text_.Delete(0, end + 1);
        return true;
    }

private:
    CXString text_;
    bool done_ = false;
};

/// Where a path leads: the node of its last name, and that name.
struct Place {
    CQZRef<IParam> node; ///< empty when it is missing
    CXString cut;        ///< the last name, of a path with "\"
    const char* whole;   ///< the path itself when it has none, else null

    const char* name() const { return whole != nullptr ? whole : cut.GetData(); } ///< @return the last name
};

/// @param open_node called with the part of the path before its last name
template <class Open>
Place place_of(IParam& tree, const char* path, Open open_node) {
    Place place = {CQZRef<IParam>::Share(&tree), CXString(), path};
    if (std::strchr(path, '\\') == nullptr) return place;
    place.cut = CXString(path);
    place.whole = nullptr;
    const int last = place.cut.FindRev(L'\\');
    if (last < 0) return place; // it was part of a character
    CXString nodes(place.cut);
    nodes.Extract(0, last);
    place.cut.Delete(0, last + 1);
    place.node = open_node(nodes.GetData());
    return place;
}

inline Place find_place(IParam& tree, const char* path) {
    return place_of(tree, path, [&tree](const char* nodes) { return qz::open(tree, nodes); });
}

} // namespace detail

/// Opens the node that a path leads to and makes what is missing on the way; what is there stays.
/// @return never empty. Throws CXException QZERR_OTHER when a node can neither be opened nor made, and what
///         the tree throws.
inline CQZRef<IParam> make(IParam& tree, TextArg path) {
    auto node = CQZRef<IParam>::Share(&tree);
    detail::Path rest(path.c_str());
    for (CXString name; rest.take(name);) {
        node = CQZRef<IParam>::Adopt(node->OpenSubParam(name.GetData(), 1));
        if (!node) throw CXException(QZERR_OTHER);
    }
    return node;
}

/// Removes a node and everything under it; a missing one is no failure. Over a storage the node stays,
/// empty, as DeleteSubParam leaves it there.
inline void erase_node(IParam& tree, TextArg path) {
    const auto place = detail::find_place(tree, path.c_str());
    if (place.node) place.node->DeleteSubParam(place.name());
}

// -------------------------------------------------------------------------------------------------- values

/// @param name a name in this very node, never a path; empty for the default value "@"
/// @return the value as it is stored, or nothing when there is none
inline std::optional<CQZVariant> find_value(IParam& node, TextArg name) {
    std::optional<CQZVariant> value(std::in_place);
    if (!detail::read_value(node, name.c_str(), *value)) value.reset();
    return value;
}

/// The parts that the functions below are made of.
namespace detail {

inline bool read_at(IParam& tree, const char* path, CQZVariant& value) {
    const Place place = find_place(tree, path);
    return place.node && read_value(*place.node, place.name(), value);
}

} // namespace detail

/// Reads a value as T, by the rule of qz::from_variant: without loss or not at all. A number is found under
/// every number type that holds it; a text is no number.
/// @return the value; nothing when there is none, or none that is a T. Throws what the tree throws.
template <class T>
std::optional<T> get(IParam& tree, TextArg path) {
    CQZVariant value;
    if (!detail::read_at(tree, path.c_str(), value)) return std::nullopt;
    return from_variant<T>(value);
}

/// The same with a value to fall back on: qz::get(tree, "View\\Width", 800).
template <class T>
T get(IParam& tree, TextArg path, T fallback) {
    std::optional<T> value = get<T>(tree, path);
    return value ? *std::move(value) : std::move(fallback);
}
/// The same for texts, with a literal to fall back on.
inline std::string get(IParam& tree, TextArg path, const char* fallback) {
    return get<std::string>(tree, path, std::string(fallback));
}
/// The same for wide texts.
inline std::wstring get(IParam& tree, TextArg path, const wchar_t* fallback) {
    return get<std::wstring>(tree, path, std::wstring(fallback));
}

/// Reads a value and converts it by the library's own rules, as qz::convert: "12 mm" is the int 12.
/// @return the value; nothing when there is none, or no such conversion. Throws what the tree throws.
template <class T>
std::optional<T> get_converted(IParam& tree, TextArg path) {
    CQZVariant value;
    if (!detail::read_at(tree, path.c_str(), value)) return std::nullopt;
    return convert<T>(value);
}

/// Stores a value under the type that qzvalue.h names for it, making the nodes on its path. Texts may be
/// literals, std::string, std::string_view, CXString and their wide twins; booleans stay booleans; a
/// tagQZVARIANT is stored as it is. What a backend refuses it refuses silently, as SetValue tells.
/// Throws CXException QZERR_OTHER when a node on the way can neither be opened nor made,
/// std::invalid_argument for a text with a zero in it, CXMemException, and what the tree throws.
template <class T>
void set(IParam& tree, TextArg path, const T& value) {
    const CQZVariant variant = to_variant(value);
    const auto place =
        detail::place_of(tree, path.c_str(), [&tree](const char* nodes) { return make(tree, nodes); });
    place.node->SetValue(place.name(), &variant);
}

/// Removes a value; a missing one is no failure.
inline void erase_value(IParam& tree, TextArg path) {
    const auto place = detail::find_place(tree, path.c_str());
    if (place.node) place.node->DeleteValue(place.name());
}

// --------------------------------------------------------------------------------------------- whole trees

/// @return the tree's text form on one line. Throws CXMemException, CXIFaceException, and what the tree
///         throws.
inline std::string text_of(IParam& tree) {
    CXString text;
    if (Param_Param2String(&tree, text) == 0) throw CXMemException();
    return std::string(view(text));
}

/// Reads a text form into a tree, adding to what is there. Throws CXMemException, std::invalid_argument for a
/// zero in the text, and what the tree throws.
inline void read_text(IParam& tree, std::string_view form) {
    CXString text = string_of(form);
    if (Param_String2Param(text, &tree) == 0) throw CXMemException();
}

} // namespace qz
