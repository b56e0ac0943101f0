// Memory that is refused to the library by chance. The program's own low-memory sink then gives up or has the
// request tried again, by chance too.
#pragma once

#include "support/random.h"

void install_refusals(); // once, before the first thread

// Refuses one allocation in `one_in` to what the library does on this thread; 0 refuses none.
class Refusing {
public:
    Refusing(Random& random, unsigned one_in);
    ~Refusing();
    Refusing(const Refusing&) = delete;
    Refusing& operator=(const Refusing&) = delete;

    bool happened() const; // whether a request was given up since
};

struct RefusalCounts {
    unsigned long long refused, tried_again;
};
RefusalCounts refusal_counts();
