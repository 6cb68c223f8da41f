// kirvo convert and kirvo turn: many pictures, one after the other or side by side.
#pragma once

#include "commands/naming.hpp"

struct Run {
    bool dry = false;
    int32_t workers = 0; // as many as there are processors
};

// Does every job, after one that fails too. True when none has failed. Throws UsageError.
bool convert(const Conversion& conversion, const Operands& operands, const Run& run);
