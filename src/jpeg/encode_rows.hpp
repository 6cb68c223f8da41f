// The per-sample work of an encode as row kernels: colours to samples, chroma made smaller, blocks
// of samples to quantised coefficients. Samples are level-shifted: -128 to 127.
#pragma once

#include "jpeg/encode_settings.hpp"

#include <cstddef>

namespace kirvo {

// A quantiser table as the kernels use it, in natural order. (magnitude + bias) * reciprocal >> 16
// and then * scale >> 16 is the rounded quotient of every coefficient that a transform can yield.
struct Quantiser {
    alignas(64) uint16_t bias[64];
    alignas(64) uint16_t reciprocal[64];
    alignas(64) uint16_t scale[64];
    int16_t divisor[64]; // 0: not coded

    // From the first count entries of a table in zigzag order.
    void set(const QuantiserTable& table, int32_t count);
};

// Quantised coefficients of one block in zigzag order.
using Levels = int16_t[64];

// Kernels may compute this many blocks at once: code_blocks reads samples of, and writes, whole
// groups.
constexpr size_t block_group = 4;

struct EncodeRows {
    // Pixels (blue, green, red bytes) to samples.
    void (*convert)(const uint8_t* bgr, size_t count, int8_t* y, int8_t* cb, int8_t* cr);
    // Rounded means of pairs, and of squares in two rows; count is that of the results. Rows are
    // read and written in steps of up to 64 samples.
    void (*halve_across)(const int8_t* row, size_t count, int8_t* half);
    void (*halve_both)(const int8_t* upper, const int8_t* lower, size_t count, int8_t* half);
    // Transforms and quantises blocks that stand side by side. Bit k of nonzero tells whether level
    // k is one.
    void (*code_blocks)(const int8_t* samples, ptrdiff_t stride, size_t blocks,
                        const Quantiser& quantiser, Levels* levels, uint64_t* nonzero);
};

// The kernels of the CPU level in force.
EncodeRows encode_rows();

EncodeRows encode_rows_scalar();

} // namespace kirvo
