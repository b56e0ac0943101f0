/// @file
/// User-interface support and translation.
#pragma once

#include "qzexport.h"

/// @return the code page of the loaded dictionary, in which narrow text is turned into wide text; 0 stands
///         for the system's ANSI code page and is the answer while no dictionary has named a language
QZR_API unsigned long Supp_GetACP();
