#include "simd/kernels/table.hpp"
#include "simd/vector_wasm.hpp"

namespace kirvo::wasm {

const Kernels kernels = table_of<Vector, Vector>();

} // namespace kirvo::wasm
