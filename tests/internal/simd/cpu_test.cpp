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

#if defined(__x86_64__) || defined(__i386__)
// As the compiler's own library finds it out.
TEST(CpuLevels, AreThoseOfTheProcessor) {
    __builtin_cpu_init();
    const bool wide = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                      __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl") &&
                      __builtin_cpu_supports("avx512vbmi") &&
                      __builtin_cpu_supports("avx512vpopcntdq");
    const CpuLevel expected = wide                             ? CpuLevel::avx512
                              : __builtin_cpu_supports("avx2") ? CpuLevel::avx2
                              : __builtin_cpu_supports("sse2") ? CpuLevel::sse2
                                                               : CpuLevel::scalar;
    EXPECT_EQ(kirvo::detect_cpu_level(), expected);
}
#endif
