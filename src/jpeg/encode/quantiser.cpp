#include "jpeg/encode/quantiser.hpp"

#include "simd/dct.hpp"

namespace kirvo {

// With 2^k <= q < 2^(k+1), k above 0, and R = 2^(15+k) / q rounded up (so below 2^16), x * R >> 16
// >> (k-1) is x / q for every x with x * q < 2^(15+k), thus for all below 2^13. The last shift is a
// multiplication by 2^(17-k) for k above 1. Where nothing is left to shift, the factor 65535 takes
// 1 from any quotient but 0, for which the bias makes up with one divisor more.
void set_quantiser(Quantiser& quantiser, const uint8_t* table, int32_t count) {
    quantiser = {};
    for (int32_t position = 0; position < count; ++position) {
        const uint32_t q = table[position];
        const size_t n = zigzag[static_cast<size_t>(position)];
        uint32_t k = 0;
        while (q >> (k + 1) != 0)
            ++k;
        const uint32_t rounded_up = ((1u << (15 + k)) + q - 1) / q;
        quantiser.divisor[n] = static_cast<uint8_t>(q);
        for (size_t i = n % 8; i < 8 * blocks_abreast; i += 8) {
            quantiser.reciprocal[n / 8][i] = static_cast<uint16_t>(q == 1 ? 65535 : rounded_up);
            quantiser.scale[n / 8][i] = static_cast<uint16_t>(k > 1 ? 1u << (17 - k) : 65535);
            quantiser.bias[n / 8][i] = static_cast<uint16_t>(q / 2 + (k > 1 ? 0 : q) + (q == 1));
        }
    }
}

} // namespace kirvo
