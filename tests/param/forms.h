// What the tests of the text form and of the stream form share: trees from texts and bytes and back, and
// values described in words.
#pragma once

#include "qzparam.h"
#include "qzref.h"
#include "qzstream.h"
#include "qzstring.h"
#include "qzvariant.h"

#include <string>
#include <string_view>

namespace forms {

using Tree = CQZRef<IParam>;
using Stream = CQZRef<IXStream>;

Tree tree_from(const std::string& text); // by Param_String2Param
std::string text_of(IParam& tree);       // by Param_Param2String

Stream stream_of(std::string_view bytes); // at its start
std::string content_of(IXStream& stream);
std::string bytes_of(IParam& tree);         // by SaveParamToXStream
Tree tree_of_bytes(std::string_view bytes); // by LoadParamFromXStream

// The value as describe() tells it (support/variants.h), and "none" when it is not there.
std::string value_in(IParam& tree, const char* name);

// Two names of one hash. What is stored under the first and deleted under the second stays listed and does
// not open.
constexpr char kOneName[] = "aeaea";
constexpr char kSameHash[] = "bagab";

} // namespace forms
