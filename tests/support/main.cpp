// Every test program starts here.

#include <gtest/gtest.h>

#if defined(__SANITIZE_ADDRESS__)
// A block that cannot be had is an answer to be tested, not a finding.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
    return "allocator_may_return_null=1:detect_stack_use_after_return=1";
}
#endif

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
