// kirvo_kernel_tests                 every kernel at every level against its oracle
// kirvo_kernel_tests --bench [NAME]  their times; of those whose name contains NAME
#include "kernels/harness.hpp"

#include <gtest/gtest.h>

namespace {

using namespace kirvo_test;

class KernelTest : public testing::Test {
  public:
    explicit KernelTest(const AnyCase& kernel) : kernel_(kernel) {}
    void TestBody() override { check(kernel_, levels()); }

  private:
    const AnyCase& kernel_;
};

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (argc > 1 && argv[1] == std::string("--bench")) {
        measure(argc > 2 ? argv[2] : "");
        return 0;
    }
    for (const AnyCase& kernel : all_cases())
        testing::RegisterTest("Kernels", kernel.name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                              [&kernel]() -> testing::Test* { return new KernelTest(kernel); });
    return RUN_ALL_TESTS();
}
