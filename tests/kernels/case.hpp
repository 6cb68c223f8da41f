// What the harness knows of a kernel.
#pragma once

#include "kernels/trial.hpp"
#include "simd/kernels.hpp"

namespace kirvo_test {

template<typename Kernel>
struct Case {
    // What the kernel's comment says, in plain code of its own.
    Kernel oracle;
    // Makes arguments for trial.count items and calls the kernel with them.
    void (*call)(Kernel kernel, Trial& trial);
    // What the items are.
    const char* unit;
    // The highest count that is tried.
    size_t most = 4093;
    // Makes the arguments of each of so many rounds that leave nothing to chance.
    void (*thorough)(Kernel kernel, Trial& trial) = nullptr;
    size_t rounds = 0;
};

} // namespace kirvo_test
