/// @file
/// All public headers at once: the library's interfaces and functions, then the helpers in the namespace qz.
#pragma once

#include "qzexception.h"
#include "qzexport.h"
#include "qzfile.h"
#include "qzheap.h"
#include "qzobject.h"
#include "qzparam.h"
#include "qzref.h"
#include "qzstream.h"
#include "qzstring.h"
#include "qzsupp.h"
#include "qzsync.h"
#include "qzunknown.h"
#include "qzurl.h"
#include "qzvariant.h"

#include "qzbytes.h"
#include "qzcreate.h"
#include "qzfileio.h"
#include "qzguard.h"
#include "qzprogress.h"
#include "qzrange.h"
#include "qztext.h"
#include "qztree.h"
#include "qzvalue.h"
