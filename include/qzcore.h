/// @file
/// All public headers at once.
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
