#include "simd/kernels.hpp"

#include "simd/cpu.hpp"

namespace kirvo {

const Kernels& kernels() {
#define TABLE(level) &level::kernels,
    static constexpr const Kernels* tables[] = {KIRVO_LEVELS(TABLE)};
#undef TABLE
    return *tables[static_cast<int>(cpu_level())];
}

} // namespace kirvo
