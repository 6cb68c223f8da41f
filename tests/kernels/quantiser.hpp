#pragma once
#include "kernels/zigzag.hpp"
#include "simd/kernel_types.hpp"
namespace kirvo_test {
inline kirvo::Quantiser make_quantiser(const uint8_t* table, int32_t count) {
    kirvo::Quantiser z = {};
    for (int32_t position = 0; position < count; ++position) {
        const uint32_t q = table[position];
        const size_t n = zigzag[static_cast<size_t>(position)];
        uint32_t k = 0;
        while (q >> (k + 1) != 0)
            ++k;
        const uint32_t rounded_up = ((1u << (15 + k)) + q - 1) / q;
        z.divisor[n] = static_cast<uint8_t>(q);
        for (size_t i = n % 8; i < 8 * kirvo::blocks_abreast; i += 8) {
            z.reciprocal[n / 8][i] = static_cast<uint16_t>(q == 1 ? 65535 : rounded_up);
            z.scale[n / 8][i] = static_cast<uint16_t>(k > 1 ? 1u << (17 - k) : 65535);
            z.bias[n / 8][i] = static_cast<uint16_t>(q / 2 + (k > 1 ? 0 : q) + (q == 1));
        }
    }
    return z;
}
} // namespace kirvo_test
