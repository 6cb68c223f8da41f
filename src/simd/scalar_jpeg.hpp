// The definition of the codecs' kernels.
#pragma once

#include "simd/dct.hpp"
#include "simd/kernels.hpp"

#include <algorithm>

namespace kirvo::scalar {
namespace {

// For k = 0, the mean, cos(pi / 4).
constexpr int32_t cosines[8] = {dct::c4, dct::c1, dct::c2, dct::c3,
                                dct::c4, dct::c5, dct::c6, dct::c7};

// The factor of input u in output x.
constexpr int32_t factor(int32_t x, int32_t u) {
    if (u == 0)
        return cosines[0];
    const int32_t angle = (2 * x + 1) * u % 32; // in steps of pi / 16
    const int32_t folded = angle <= 16 ? angle : 32 - angle;
    return folded <= 8 ? cosines[folded % 8] : -cosines[16 - folded];
}

constexpr auto factors = [] {
    std::array<std::array<int32_t, 8>, 8> table = {};
    for (size_t i = 0; i < 64; ++i)
        table[i / 8][i % 8] = factor(static_cast<int32_t>(i / 8), static_cast<int32_t>(i % 8));
    return table;
}();

// One output of the one-dimensional transform; the sum wraps.
int32_t weighted_sum(const int16_t* input, const int32_t* weights, int32_t scale) {
    uint32_t sum = 0;
    for (int32_t u = 0; u < 8; ++u)
        sum += static_cast<uint32_t>(input[u]) * static_cast<uint32_t>(weights[u] * scale);
    return static_cast<int32_t>(sum);
}

void inverse_dct(const int16_t* levels, const int16_t* quantisers, int32_t, int16_t* samples,
                 ptrdiff_t stride) {
    int16_t columns[8][8]; // after the pass over the rows
    for (size_t row = 0; row < 8; ++row) {
        int16_t input[8];
        for (size_t u = 0; u < 8; ++u) {
            const size_t place = block_place_of(row, u);
            input[u] = static_cast<int16_t>(levels[place] * quantisers[place]);
        }
        for (size_t x = 0; x < 8; ++x)
            columns[x][row] = static_cast<int16_t>(weighted_sum(input, factors[x].data(), 8) >> 16);
    }
    for (int32_t y = 0; y < 8; ++y) {
        for (int32_t x = 0; x < 8; ++x) {
            const auto sum = static_cast<uint32_t>(
                weighted_sum(columns[x], factors[static_cast<size_t>(y)].data(), 1));
            samples[y * stride + x] =
                static_cast<int16_t>(static_cast<int32_t>(sum + (1u << 18)) >> 19);
        }
    }
}

// Luma times 65536 changes nothing below the point, so what the chroma adds can be rounded alone.
void chroma_terms(const int16_t* cb, const int16_t* cr, ChromaTerms terms, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        terms.blue[i] = static_cast<int16_t>(128 + (115999 * cb[i] >> 16));
        terms.green[i] = static_cast<int16_t>(128 + ((-22525 * cb[i] - 46812 * cr[i]) >> 16));
        terms.red[i] = static_cast<int16_t>(128 + (91881 * cr[i] >> 16));
    }
}

uint8_t clamp8(int32_t value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

void decoded_grey(const int16_t* y, uint8_t* bgr, size_t count) {
    for (size_t i = 0; i < count; ++i)
        bgr[3 * i] = bgr[3 * i + 1] = bgr[3 * i + 2] = clamp8(y[i] + 128);
}

template<size_t pixels_per_term>
void decoded_colour(const int16_t* y, ChromaTerms terms, uint8_t* bgr, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const size_t term = i / pixels_per_term;
        bgr[3 * i] = clamp8(y[i] + terms.blue[term]);
        bgr[3 * i + 1] = clamp8(y[i] + terms.green[term]);
        bgr[3 * i + 2] = clamp8(y[i] + terms.red[term]);
    }
}

void samples_of(const uint8_t* bgr, size_t count, int8_t* y, int8_t* cb, int8_t* cr) {
    for (size_t i = 0; i < count; ++i, bgr += 3) {
        const int32_t blue = bgr[0], green = bgr[1], red = bgr[2];
        y[i] = static_cast<int8_t>((77 * red + 150 * green + 29 * blue - 32640) >> 8);
        cb[i] = static_cast<int8_t>((128 * blue - 85 * green - 43 * red + 127) >> 8);
        cr[i] = static_cast<int8_t>((128 * red - 107 * green - 21 * blue + 127) >> 8);
    }
}

void halve(const int8_t* upper, const int8_t* lower, size_t count, int8_t* half) {
    for (size_t i = 0; i < count; ++i, upper += 2, lower += 2)
        half[i] = static_cast<int8_t>((upper[0] + upper[1] + lower[0] + lower[1] + 2) >> 2);
}

// Output u of the one-dimensional transform, scaled by 2^16.
template<typename In>
int32_t frequency(const In* in, ptrdiff_t step, size_t u) {
    int32_t sum = 0;
    for (size_t x = 0; x < 8; ++x, in += step)
        sum += factors[x][u] * *in;
    return sum;
}

// Rows, then columns; natural order.
void forward_dct(const int8_t* samples, ptrdiff_t stride, int16_t* coefficients) {
    int32_t work[64];
    for (size_t i = 0; i < 64; ++i)
        work[i] = frequency(samples + static_cast<ptrdiff_t>(i / 8) * stride, 1, i % 8) >> 13;
    for (size_t i = 0; i < 64; ++i)
        coefficients[i] = static_cast<int16_t>((frequency(work + i % 8, 8, i / 8) + 262144) >> 19);
}

// Half away from zero; 0 for a coefficient that is not coded.
int16_t rounded_quotient(int32_t coefficient, int32_t divisor) {
    if (divisor == 0)
        return 0;
    const int32_t half = divisor / 2;
    return static_cast<int16_t>((coefficient > 0 ? coefficient + half : coefficient - half) /
                                divisor);
}

void code_block(const int8_t* samples, ptrdiff_t stride, const Quantiser& quantiser,
                BlockGroup& group, size_t block) {
    int16_t coefficients[64];
    forward_dct(samples, stride, coefficients);
    group.nonzero[block] = 0;
    for (size_t k = 0; k < 64; ++k) {
        const size_t n = zigzag[k];
        const int16_t level = rounded_quotient(coefficients[n], quantiser.divisor[n]);
        group.level[n / 8][8 * block + n % 8] = level;
        group.small[block][k] =
            static_cast<uint8_t>(std::clamp<int>(level, INT8_MIN, INT8_MAX) + small_levels);
        group.nonzero[block] |= uint64_t{level != 0} << k;
    }
}

void code_groups(const int8_t* samples, ptrdiff_t stride, size_t groups, const Quantiser& quantiser,
                 BlockGroup* out) {
    for (size_t block = 0; block < groups * blocks_abreast; ++block)
        code_block(samples + 8 * block, stride, quantiser, out[block / blocks_abreast],
                   block % blocks_abreast);
}

} // namespace
} // namespace kirvo::scalar
