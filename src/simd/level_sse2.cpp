#include "simd/kernels/table.hpp"
#include "simd/vector_sse2.hpp"

namespace kirvo::sse2 {

const Kernels kernels = table_of<Vector, Vector>();

} // namespace kirvo::sse2
