// Watches the running input: crashes, hangs and memory without bounds end the program and keep the input.
#pragma once

#include <string>

namespace fuzz {

constexpr unsigned kPatience = 60; // seconds; compound files take long on a machine that does much else

struct Guard {
    std::string target;
    std::string found_folder;     // where bad inputs go; exists
    unsigned seconds = kPatience; // that one input may take
    unsigned long long most_memory = 0;
};
void start_guard(const Guard& guard); // once

// Between these the input is watched. It must stay where it is.
void input_begins(const std::string& input);
void input_ends();

unsigned long long memory_asked_for(); // by the last input

void check_heaps(); // all of the process

} // namespace fuzz
