// Every kernel with its case, whatever its type.
#pragma once

#include "kernels/trial.hpp"
#include "simd/kernels.hpp"

namespace kirvo_test {

// A kernel as the functions below know it: they call it by the table it is in, or its oracle
// without one.
struct AnyCase {
    using Call = std::function<void(const kirvo::Kernels* table, Trial& trial)>;

    std::string name;
    const char* unit;
    size_t most;
    Call call, thorough;
    size_t rounds;
};

const std::vector<AnyCase>& all_cases();

struct Level {
    const char* name;
    const kirvo::Kernels* table;
};

// Those that the machine has and KIRVO_CPU allows, the scalar one first.
std::vector<Level> levels();

// Fails the running test where a level differs from the oracle.
void check(const AnyCase& kernel, const std::vector<Level>& at);

// Prints the time of all kernels whose name contains a word.
void measure(const std::string& word);

} // namespace kirvo_test
