#include "simd/kernels/table.hpp"
#include "simd/vector_avx2.hpp"
#include "simd/vector_avx512.hpp"

namespace kirvo::avx512 {

const Kernels kernels = table_of<Vector, avx2::Vector>();

} // namespace kirvo::avx512
