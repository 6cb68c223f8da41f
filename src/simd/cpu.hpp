// The instruction sets that kernels may use, decided in one place.
#pragma once

#include "simd/levels.hpp"

namespace kirvo {

// avx512 stands for F, BW, DQ, VL, VBMI and VPOPCNTDQ together.
#define NAME(level) level,
enum class CpuLevel { KIRVO_LEVELS(NAME) };
#undef NAME

#define ONE(level) +1
constexpr int cpu_levels = KIRVO_LEVELS(ONE);
#undef ONE
constexpr CpuLevel highest_cpu_level = static_cast<CpuLevel>(cpu_levels - 1);

// The highest level of this machine and system, lowered by the environment variable
// KIRVO_CPU=scalar|sse2|avx2|avx512 (read once; another word is ignored) and by lower_cpu_level.
CpuLevel cpu_level();

// For tests and benchmarks: caps the level from now on, never above the machine's.
void lower_cpu_level(CpuLevel cap);

// What this machine and system have.
CpuLevel detect_cpu_level();

} // namespace kirvo
