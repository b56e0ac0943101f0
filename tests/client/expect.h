// What the client program expects; what does not come true is printed and counted.
#pragma once

void expect(bool ok, const char* what);

// The parts of the program, one for each header or two.
void use_texts();
void use_values();
void use_trees();
void use_ranges();
void use_files();
void use_progress();
