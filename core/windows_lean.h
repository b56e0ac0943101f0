// The platform header. Every other file of the library includes this one instead, so that all of them see the
// same version, without the seldom-used parts and without the macros that collide with our own names.
#pragma once

#if !defined(WIN32_LEAN_AND_MEAN)
#define WIN32_LEAN_AND_MEAN
#endif
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>

#undef GetClassName // a member of IPersistXStream
