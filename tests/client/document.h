// The public headers in a second translation unit: what they define in passing must not clash.
#pragma once

#include "qzparam.h"
#include "qzstream.h"

bool save_document(IXStream& stream, IParam& settings);
IParam* load_document(IXStream& stream); // one reference for the caller
