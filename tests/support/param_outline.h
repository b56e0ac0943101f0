// Parameter trees in tests: written down in one line, and built by a list of steps.
#pragma once

#include "support/tree_names.h"

// "v=5 w a{x=1 b{}}": values, integers with what they are, then children with theirs. A child that is listed
// and does not open is "a!", such a value "v!". An empty value "@" is not shown: it marks nodes in INI files.
// Sorted where a backend has no order of its own.
std::string outline_of(IParam& node, bool ordered = true);

void set_int(IParam& node, const char* name, int value);

constexpr int kNoValue = -99999;
int get_int(IParam& node, const char* name); // kNoValue when it is not there or no integer

// Operations with their names, as in "create a; set a\\v": "create" (CreateSubParam), "make" (OpenSubParam,
// creating), "open" (not creating), "set" (an integer value, the number of the step from 1 on), "put" (the
// same in the node that the path opens), "clear", "delete" (DeleteValue), "drop" (DeleteSubParam).
void run_steps(IParam& root, const std::string& steps);

// A tree of its own.
CQZRef<IParam> memory_tree(const std::string& steps = "");
