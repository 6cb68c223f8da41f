#include "effects/block_rows.hpp"

#include "simd/cpu.hpp"

#define BLOCK_ROWS baseline_block_rows
namespace kirvo {
#include "effects/block_rows.inc"

const BlockRows& block_rows() {
    switch (cpu_level()) {
    case CpuLevel::avx512:
        return avx512::block_rows;
    case CpuLevel::avx2:
        return avx2::block_rows;
    default:
        return baseline_block_rows;
    }
}

} // namespace kirvo
