// Reading records from streams in steps. The block-wise path of a memory stream must do the same as the one
// that transfers character by character, write only where it may and leak no object.
#pragma once

#include "contracts/persistent_note.h"
#include "fuzz/target.h"
#include "qzexception.h"
#include "qzref.h"
#include "qzstream.h"
#include "qzvariant.h"

namespace fuzz {

enum class Step { variant, object, skip_object, line, wide_line };

constexpr std::size_t kScript = 8; // bytes at the start of an input that choose the steps

// Runs the steps that the input's first bytes choose among these over the rest.
void read_records(const std::string& input, const std::vector<Step>& among);

} // namespace fuzz
