// Quantiser tables as the kernels use them.
#pragma once

#include "simd/kernel_types.hpp"

namespace kirvo {

// From the first count entries of a table in zigzag order.
void set_quantiser(Quantiser& quantiser, const uint8_t* table, int32_t count);

} // namespace kirvo
