// The scalar kernels: the definition of every encode's result.
#include "jpeg/encode_rows.hpp"

#include "simd/cpu.hpp"
#include "jpeg/tables.hpp"

#include <algorithm>

namespace kirvo {

namespace {

void convert(const uint8_t* bgr, size_t count, int8_t* y, int8_t* cb, int8_t* cr) {
    for (size_t i = 0; i < count; ++i, bgr += 3) {
        const int32_t blue = bgr[0], green = bgr[1], red = bgr[2];
        y[i] = static_cast<int8_t>((77 * red + 150 * green + 29 * blue - 32640) >> 8);
        cb[i] = static_cast<int8_t>((128 * blue - 85 * green - 43 * red + 127) >> 8);
        cr[i] = static_cast<int8_t>((128 * red - 107 * green - 21 * blue + 127) >> 8);
    }
}

void halve_across(const int8_t* row, size_t count, int8_t* half) {
    for (size_t i = 0; i < count; ++i, row += 2)
        half[i] = static_cast<int8_t>((row[0] + row[1] + 1) >> 1);
}

void halve_both(const int8_t* upper, const int8_t* lower, size_t count, int8_t* half) {
    for (size_t i = 0; i < count; ++i, upper += 2, lower += 2)
        half[i] = static_cast<int8_t>((upper[0] + upper[1] + lower[0] + lower[1] + 2) >> 2);
}

// floor(cos(k pi / 16) * 32767)
constexpr int32_t c1 = 32137, c2 = 30272, c3 = 27244, c4 = 23169, c5 = 18204, c6 = 12539,
                  c7 = 6392;

// An 8-point DCT scaled by 2^16: from the sums and differences of mirrored inputs, each output as
// one sum of products.
template <typename In>
void transform(const In* in, ptrdiff_t step, int32_t* out) {
    const auto x = [&](int i) { return int32_t{in[i * step]}; };
    const int32_t s07 = x(0) + x(7), s16 = x(1) + x(6), s25 = x(2) + x(5), s34 = x(3) + x(4);
    const int32_t d07 = x(0) - x(7), d16 = x(1) - x(6), d25 = x(2) - x(5), d34 = x(3) - x(4);
    out[0] = c4 * (s07 + s16 + s25 + s34);
    out[1] = c1 * d07 + c3 * d16 + c5 * d25 + c7 * d34;
    out[2] = c2 * (s07 - s34) + c6 * (s16 - s25);
    out[3] = c3 * d07 - c7 * d16 - c1 * d25 - c5 * d34;
    out[4] = c4 * (s07 - s16 - s25 + s34);
    out[5] = c5 * d07 - c1 * d16 + c7 * d25 + c3 * d34;
    out[6] = c6 * (s07 - s34) - c2 * (s16 - s25);
    out[7] = c7 * d07 - c5 * d16 + c3 * d25 - c1 * d34;
}

// Rows, then columns; natural order.
void forward_dct(const int8_t* samples, ptrdiff_t stride, int16_t* coefficients) {
    int32_t work[64], out[8];
    for (int row = 0; row < 8; ++row) {
        transform(samples + row * stride, 1, out);
        for (int u = 0; u < 8; ++u)
            work[row * 8 + u] = out[u] >> 13;
    }
    for (int column = 0; column < 8; ++column) {
        transform(work + column, 8, out);
        for (int v = 0; v < 8; ++v)
            coefficients[v * 8 + column] = static_cast<int16_t>((out[v] + 262144) >> 19);
    }
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
        group.small[block][k] = static_cast<uint8_t>(
            std::clamp<int>(level, INT8_MIN, INT8_MAX) + small_levels);
        group.nonzero[block] |= uint64_t{level != 0} << k;
    }
}

void code_groups(const int8_t* samples, ptrdiff_t stride, size_t groups,
                 const Quantiser& quantiser, BlockGroup* out) {
    for (size_t block = 0; block < groups * group_blocks; ++block)
        code_block(samples + 8 * block, stride, quantiser, out[block / group_blocks],
                   block % group_blocks);
}

} // namespace

// With 2^k <= q < 2^(k+1), k above 0, and R = 2^(15+k) / q rounded up (so below 2^16), x * R >> 16
// >> (k-1) is x / q for every x with x * q < 2^(15+k), thus for all below 2^13. The last shift is a
// multiplication by 2^(17-k) for k above 1. Where nothing is left to shift, the factor 65535 takes
// 1 from any quotient but 0, for which the bias makes up with one divisor more.
void Quantiser::set(const uint8_t* table, int32_t count) {
    *this = {};
    for (int32_t position = 0; position < count; ++position) {
        const uint32_t q = table[position];
        const size_t n = zigzag[static_cast<size_t>(position)];
        uint32_t k = 0;
        while (q >> (k + 1) != 0)
            ++k;
        const uint32_t rounded_up = ((1u << (15 + k)) + q - 1) / q;
        divisor[n] = static_cast<uint8_t>(q);
        for (size_t i = n % 8; i < 8 * group_blocks; i += 8) {
            reciprocal[n / 8][i] = static_cast<uint16_t>(q == 1 ? 65535 : rounded_up);
            scale[n / 8][i] = static_cast<uint16_t>(k > 1 ? 1u << (17 - k) : 65535);
            bias[n / 8][i] = static_cast<uint16_t>(q / 2 + (k > 1 ? 0 : q) + (q == 1));
        }
    }
}

const EncodeRows encode_rows_scalar = {convert, halve_across, halve_both, code_groups};

const EncodeRows& encode_rows() {
    if (cpu_has_vbmi())
        return avx512::encode_rows;
    switch (cpu_level()) {
    case CpuLevel::scalar:
        return encode_rows_scalar;
    case CpuLevel::sse2:
        return sse2::encode_rows;
    default:
        return avx2::encode_rows;
    }
}

} // namespace kirvo
