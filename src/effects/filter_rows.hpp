// Row kernels of the neighbourhood filters, one set per instruction level.
//
// Kernels that look at a neighbourhood take three rows of bytes in the order of storage: the row
// below on screen, the row itself, the row above. They read one pixel beyond both ends of each.
// Sources and destinations do not overlap.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kirvo {

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

struct FilterRows {
    // (11 corners + 30 edges + 81 centre) >> 8; count bytes of 24-bit pixels
    void (*blur)(uint8_t* to, ThreeRows rows, size_t count);
    // Weighted sums, divided and clamped; count bytes of 24-bit pixels. For sums that fit 16 signed
    // bits, and for those that fit 32.
    void (*convolve16)(uint8_t* to, ThreeRows rows, size_t count, const Convolution& by);
    void (*convolve32)(uint8_t* to, ThreeRows rows, size_t count, const Convolution& by);
    // (77 red + 150 green + 29 blue + 128) >> 8 of count 24-bit pixels
    void (*luminance)(uint8_t* to, const uint8_t* bgr, size_t count);
    // 4 centre - (left + right + below + above) of count luminances
    void (*laplacian)(int16_t* to, ThreeRows rows, size_t count);
    // right + above - below - left + 2 (above right - below left)
    void (*gradient)(int16_t* to, ThreeRows rows, size_t count);
    // The Laplacian over 2, 4, 6 or 8, truncating, in two parts of at most 255: what sharpening adds
    // to a pixel's channels and what it takes away.
    void (*correction)(uint8_t* plus, uint8_t* minus, const int16_t* laplacian, size_t count,
                       int divisor);
    // from + plus - minus, clamped; count bytes
    void (*correct)(uint8_t* to, const uint8_t* from, const uint8_t* plus, const uint8_t* minus,
                    size_t count);
    // 255 - |clamp(v, low, high)|, with low and high from -255 to 255
    void (*dark_edges)(uint8_t* to, const int16_t* v, size_t count, int16_t low, int16_t high);
    // clamp(v, -127, 127) + 128
    void (*relief)(uint8_t* to, const int16_t* v, size_t count);
    // 255 where v lies from low to high, else 0
    void (*between)(uint8_t* to, const int16_t* v, size_t count, int16_t low, int16_t high);
    // Each of count bytes three times.
    void (*triple)(uint8_t* to, const uint8_t* from, size_t count);
    // from | veil; count bytes
    void (*veil)(uint8_t* to, const uint8_t* from, const uint8_t* veil, size_t count);
};

extern const FilterRows baseline_filter_rows;
namespace avx2 {
extern const FilterRows filter_rows;
}
namespace avx512 {
extern const FilterRows filter_rows;
}

// The set for the CPU level of now.
const FilterRows& filter_rows();

} // namespace kirvo
