// The per-sample work of an encode as row kernels, one set per level of the processor: colours to
// samples, chroma made smaller, blocks of samples to quantised coefficients. Samples are
// level-shifted: -128 to 127. This header is plain data, so that files compiled for one instruction
// set may include it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kirvo {

// Blocks are coded in groups of four that stand side by side.
constexpr size_t group_blocks = 4;

// A quantiser table as the kernels use it, in natural order. With the magnitude m of a coefficient,
// (m + bias) * reciprocal >> 16 and then * scale >> 16 is the quotient rounded half up, for every m
// that a transform can yield.
struct Quantiser {
    using Rows = uint16_t[8][8 * group_blocks]; // each row as often as blocks stand side by side

    alignas(64) Rows bias;
    alignas(64) Rows reciprocal;
    alignas(64) Rows scale;
    uint8_t divisor[64]; // 0: not coded

    // From the first count entries of a table in zigzag order.
    void set(const uint8_t* table, int32_t count);
};

// Levels from -64 to 63 are the bulk of every stream and have a short way to their code words.
constexpr int small_levels = 64;

struct BlockGroup {
    alignas(64) int16_t level[8][8 * group_blocks]; // in natural order, as the blocks stand
    // In zigzag order, where it is not zero: level + small_levels, or at least twice that when the
    // level is not small.
    alignas(64) uint8_t small[group_blocks][64];
    uint64_t nonzero[group_blocks];                 // bit k for zigzag position k
};

struct EncodeRows {
    // Pixels (blue, green, red bytes) to samples.
    void (*convert)(const uint8_t* bgr, size_t count, int8_t* y, int8_t* cb, int8_t* cr);
    // Rounded means of pairs, and of squares in two rows; count is that of the results. Whole steps
    // of 32 results may be read and written.
    void (*halve_across)(const int8_t* row, size_t count, int8_t* half);
    void (*halve_both)(const int8_t* upper, const int8_t* lower, size_t count, int8_t* half);
    // Transforms and quantises.
    void (*code_groups)(const int8_t* samples, ptrdiff_t stride, size_t groups,
                        const Quantiser& quantiser, BlockGroup* out);
};

extern const EncodeRows encode_rows_scalar; // the definition
namespace sse2 {
extern const EncodeRows encode_rows;
}
namespace avx2 {
extern const EncodeRows encode_rows;
}
namespace avx512 {
extern const EncodeRows encode_rows; // needs VBMI
}

// The kernels of the level in force.
const EncodeRows& encode_rows();

} // namespace kirvo
