// The instruction sets that kernels may use, decided in one place.
#pragma once

namespace kirvo {

// avx512 stands for F, BW, DQ, VL and VBMI together.
enum class CpuLevel { scalar, sse2, avx2, avx512 };

// The highest level of this machine and system, lowered by the environment variable
// KIRVO_CPU=scalar|sse2|avx2|avx512 (read once; another word is ignored) and by lower_cpu_level.
CpuLevel cpu_level();

// For tests and benchmarks: caps the level from now on, never above the machine's.
void lower_cpu_level(CpuLevel cap);

} // namespace kirvo
