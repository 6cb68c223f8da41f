// Entry of a fuzzer: a program with one target.
#include "support.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    kirvo_fuzz::Target::all().front()->run_case(bytes, size);
    return 0;
}
