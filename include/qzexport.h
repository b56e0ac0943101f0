/// @file
/// What every public header needs: the export macro, the platform's base types, the compiler check.
///
/// The library is built with, and for, the C++ ABI of GCC on 64-bit Windows. All modules of a process share
/// one C++ runtime (the shared libstdc++ and libgcc), so exceptions, `throw;` and `dynamic_cast` work across
/// the edge of the library.
#pragma once

#if !defined(_WIN64)
#error "qzrcore is a 64-bit Windows library"
#endif
#if !defined(__GNUC__)
#error "qzrcore's classes follow the C++ ABI of GCC (mingw-w64); use that compiler or clang for its target"
#endif

// The platform header below defines the macros min and max unless it is told not to. Nobody wants them.
/// @cond
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
/// @endcond
#include <windef.h> // tagPOINT, tagSIZE, tagRECT, HINSTANCE

#include <typeinfo>

/// Marks what the library exports; its users import it.
#if defined(QZRCORE_BUILD)
#define QZR_API __attribute__((dllexport))
#else
#define QZR_API __attribute__((dllimport))
#endif

// The records below cross the boundary; these are the sizes both sides count on.
static_assert(sizeof(wchar_t) == 2, "wide text is made of 16-bit units");
static_assert(sizeof(long) == 4, "long is a 32-bit integer on this platform");
static_assert(sizeof(void*) == 8, "pointers are 64 bits wide");
