#include "effects/filter_rows.hpp"

#include "simd/cpu.hpp"

#define FILTER_ROWS baseline_filter_rows
namespace kirvo {
#include "effects/filter_rows.inc"

const FilterRows& filter_rows() {
    switch (cpu_level()) {
    case CpuLevel::avx512:
        return avx512::filter_rows;
    case CpuLevel::avx2:
        return avx2::filter_rows;
    default:
        return baseline_filter_rows;
    }
}

} // namespace kirvo
