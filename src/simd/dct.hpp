// What the transforms of both codecs and their callers agree upon: orders of coefficients, factors.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace kirvo {

// Natural (row-major) index of each zigzag position; T.81, Figure A.6.
inline constexpr std::array<uint8_t, 64> zigzag = {
    0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  //
    12, 19, 26, 33, 40, 48, 41, 34, 27, 20, 13, 6,  7,  14, 21, 28, //
    35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51, //
    58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63,
};

// Where a block for the inverse transform has the coefficient of two frequencies. The transform
// multiplies and adds the frequencies in the pairs 0 and 4, 2 and 6, 1 and 3, 5 and 7: for each such
// pair of horizontal frequencies stand the pairs of coefficients of the eight vertical frequencies,
// these in the same order.
constexpr size_t block_place_of(size_t vertical, size_t horizontal) {
    constexpr uint8_t rank[8] = {0, 4, 2, 5, 1, 6, 3, 7};
    return rank[horizontal] / 2 * 16 + rank[vertical] * 2 + rank[horizontal] % 2;
}

// cos(k pi / 16) * 2^15, rounded down.
namespace dct {
constexpr int16_t c1 = 32137, c2 = 30272, c3 = 27244, c4 = 23169, c5 = 18204, c6 = 12539, c7 = 6392;
}

} // namespace kirvo
