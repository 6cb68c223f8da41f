// Entry of a fuzzer: a program with one target.
#include "structure.hpp"

#include <algorithm>

using kirvo_fuzz::Target;

extern "C" {

size_t LLVMFuzzerMutate(uint8_t* bytes, size_t size, size_t most);

int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    Target::all().front()->run_case(bytes, size);
    return 0;
}

// By structure every other time, where the target knows one.
size_t LLVMFuzzerCustomMutator(uint8_t* bytes, size_t size, size_t most, unsigned seed) {
    kirvo_test::Random random(seed);
    const Target::Mutate mutate = Target::all().front()->mutate();
    if (mutate == nullptr || random.once_in(2))
        return LLVMFuzzerMutate(bytes, size, most);
    kirvo_fuzz::Bytes input(bytes, bytes + size);
    mutate(input, random);
    input.resize(std::min(input.size(), most));
    std::copy(input.begin(), input.end(), bytes);
    return input.size();
}
}
