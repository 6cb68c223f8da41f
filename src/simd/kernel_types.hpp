// Plain data that kernels work by. Files compiled for one instruction set include this, so nothing
// here may have code that could be shared with other files.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kirvo {

struct Rgb {
    uint8_t red, green, blue;
    bool operator==(const Rgb&) const = default;
};

// Tables of 256 levels: what a point operation makes of each value of a channel.
struct Levels {
    uint8_t level[256];
};

// One table a channel, in the order of a 24-bit pixel's bytes.
struct ChannelLevels {
    Levels channel[3];
};

// So many pixels are counted together.
constexpr size_t tally_pixels = 4096;

// Bytes behind what is needed that joining runs of cells may read.
constexpr size_t read_behind_runs = 64;

enum ChannelByte : uint8_t { blue_byte, green_byte, red_byte };

// Each byte of a 24-bit pixel comes from the byte of that place in the source.
struct ChannelOrder {
    uint8_t from[3];
};

// Values that pass: those from lowest to lowest + extent, or all the others.
struct PassBand {
    int32_t lowest, extent; // both from 0 on
    bool outside;

    [[gnu::always_inline]] bool passes(int32_t value) const {
        return (value >= lowest && value <= lowest + extent) != outside;
    }
};

// One bit field on its way from a pixel word to another. At least one of the counts is 0; both are
// below 32.
struct FieldMove {
    uint32_t right, left;
    uint32_t keep; // bits of the result
};

// Every conversion between depths is the same operation on 32-bit words: three bit fields move. The
// word of a 24-bit pixel is blue | green << 8 | red << 16.
struct PixelMoves {
    FieldMove channel[3];

    [[gnu::always_inline]] bool stay() const {
        return (channel[0].right | channel[0].left | channel[1].right | channel[1].left |
                channel[2].right | channel[2].left) == 0;
    }
};

// Three rows of bytes in the order of storage: the row below on screen, the row itself, the row
// above.
using ThreeRows = const uint8_t* const (&)[3];

// The weights of a 3 x 3 kernel, stored row before the pixel's first, and its divisor: a quotient
// is (sum * multiplier) >> shift, exact for every sum from 0 to 2^15 - 1 (with a shift of 16 or
// more and a multiplier below 2^16) or to 2^31 - 1.
struct Convolution {
    int16_t weight[9];
    bool divides; // false: the sum is the result already
    uint32_t multiplier;
    int32_t shift;
};

// What chroma adds to the luma of a pixel in each channel, the 128 of the luma included.
struct ChromaTerms {
    int16_t *blue, *green, *red;
};

// Blocks are encoded in groups of four that stand side by side.
constexpr size_t blocks_abreast = 4;

// A quantiser table as the kernels use it, in natural order. With the magnitude m of a coefficient,
// (m + bias) * reciprocal >> 16 and then * scale >> 16 is the quotient rounded half up, for every m
// that a transform can yield.
struct Quantiser {
    using Rows = uint16_t[8][8 * blocks_abreast]; // each row as often as blocks stand side by side

    alignas(64) Rows bias;
    alignas(64) Rows reciprocal;
    alignas(64) Rows scale;
    uint8_t divisor[64]; // 0: not coded
};

// Levels from -64 to 63 are the bulk of every stream and have a short way to their code words.
constexpr int small_levels = 64;

struct BlockGroup {
    alignas(64) int16_t level[8][8 * blocks_abreast]; // in natural order, as the blocks stand
    // In zigzag order, where it is not zero: level + small_levels, or at least twice that when the
    // level is not small.
    alignas(64) uint8_t small[blocks_abreast][64];
    uint64_t nonzero[blocks_abreast]; // bit k for zigzag position k
};

} // namespace kirvo
