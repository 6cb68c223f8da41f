#include "simd/cpu.hpp"

#include <gtest/gtest.h>

using kirvo::CpuLevel;

TEST(CpuLevels, CanBeLoweredAndNotRaised) {
    const CpuLevel machine = kirvo::cpu_level();
    for (const CpuLevel cap :
         {CpuLevel::scalar, CpuLevel::sse2, CpuLevel::avx2, CpuLevel::avx512}) {
        kirvo::lower_cpu_level(cap);
        EXPECT_EQ(kirvo::cpu_level(), std::min(machine, cap));
    }
    EXPECT_EQ(kirvo::cpu_level(), machine);
}
