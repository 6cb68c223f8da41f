#include "simd/kernels.hpp"

#include "simd/cpu.hpp"

namespace kirvo {

const Kernels& kernels() {
    static constexpr const Kernels* tables[] = {&scalar::kernels, &sse2::kernels, &avx2::kernels,
                                                &avx512::kernels};
    return *tables[static_cast<int>(cpu_level())];
}

} // namespace kirvo
