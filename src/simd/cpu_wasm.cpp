#include "simd/cpu.hpp"

namespace kirvo {

// A module is compiled as a whole or not at all: its machine has what it was built for.
CpuLevel detect_cpu_level() { return highest_cpu_level; }

} // namespace kirvo
