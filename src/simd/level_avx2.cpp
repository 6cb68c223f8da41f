#include "simd/kernels/table.hpp"
#include "simd/vector_avx2.hpp"

namespace kirvo::avx2 {

const Kernels kernels = table_of<Vector, Vector>();

} // namespace kirvo::avx2
