// Ordered dither to the library's palette.
#include "image/palette.hpp"
#include "reduce/palettes.hpp"
#include "reduce/reduction.hpp"

#include <cstring>

namespace kirvo {

namespace {

// Threshold of column x and stored row y, both modulo 8: matrix[x][y].
constexpr uint8_t matrix[8][8] = {{0, 38, 9, 47, 2, 40, 11, 50},  {25, 12, 35, 22, 27, 15, 37, 24},
                                  {6, 44, 3, 41, 8, 47, 5, 43},   {31, 19, 28, 15, 34, 21, 31, 18},
                                  {1, 39, 11, 49, 0, 39, 10, 48}, {27, 14, 36, 23, 26, 13, 35, 23},
                                  {7, 46, 4, 43, 7, 45, 3, 42},   {33, 20, 30, 17, 32, 19, 29, 16}};

constexpr size_t block_pixels = 16; // whole columns of the matrix, whole vectors of pixel bytes
constexpr size_t block_bytes = 3 * block_pixels;

// What the bytes of a block meet in one row.
struct RowDither {
    uint16_t lift[block_bytes];
    uint16_t weight[block_bytes];

    explicit RowDither(int32_t row) {
        for (size_t i = 0; i < block_bytes; ++i) {
            lift[i] = static_cast<uint16_t>(50 - matrix[i / 3 % 8][row % 8]);
            static constexpr uint16_t weights[] = {36, 6, 1};
            weight[i] = weights[i % 3];
        }
    }
};

// Shares of the cube position. Level v / 51, raised when v mod 51 is above the threshold, is
// (v + 50 - threshold) / 51, and the division is exact as a multiplication up to 305.
void cube_shares(const uint8_t* bgr, const RowDither& dither, uint8_t* shares) {
    for (size_t i = 0; i < block_bytes; ++i) {
        const auto lifted = static_cast<uint16_t>(bgr[i] + dither.lift[i]);
        const auto level = static_cast<uint16_t>((uint32_t{lifted} * 1286) >> 16);
        shares[i] = static_cast<uint8_t>(level * dither.weight[i]);
    }
}

void dither_row(const uint8_t* bgr, uint8_t* to, size_t width, int32_t row) {
    const RowDither dither(row);
    for (size_t x = 0; x < width; x += block_pixels) {
        const size_t count = std::min(width - x, block_pixels);
        const uint8_t* block = bgr + 3 * x;
        uint8_t last[block_bytes] = {};
        if (count < block_pixels)
            block = static_cast<uint8_t*>(std::memcpy(last, block, 3 * count));
        uint8_t shares[block_bytes];
        cube_shares(block, dither, shares);
        for (size_t i = 0; i < count; ++i)
            to[x + i] = halftone_slots[shares[3 * i] + shares[3 * i + 1] + shares[3 * i + 2]];
    }
}

} // namespace

} // namespace kirvo

using namespace kirvo;

HGLOBAL WINAPI Decrease256Fast(HGLOBAL dib, int32_t* status) {
    Reduction reduction(dib, RowRule::counted, 8);
    if (reduction.status() != Status::ok)
        return reduction.answer(status);
    reduction.set_colours(fixed_palette);
    reduction.each_row([&](const uint8_t* bgr, uint8_t* to, int32_t row) {
        dither_row(bgr, to, reduction.width(), row);
        return Status::ok;
    });
    return reduction.answer(status);
}
