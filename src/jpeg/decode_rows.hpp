// The per-sample work of a decode as kernels: blocks of coefficients to samples, rows of samples to
// pixels. Samples are 16-bit, centred on 0 and not clamped: -4096 to 4095.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kirvo {

struct DecodeRows {
    // Inverse transform of a Block into 8 rows of 8 samples. Coefficients after zigzag position
    // last are 0.
    void (*inverse_dct)(const int16_t* block, int32_t last, int16_t* samples, ptrdiff_t stride);
    // Rows of count pixels (blue, green, red bytes).
    void (*grey)(const int16_t* y, uint8_t* bgr, size_t count);
    void (*colour)(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* bgr,
                   size_t count);
    // The same with chroma samples that each cover two pixels.
    void (*colour_wide)(const int16_t* y, const int16_t* cb, const int16_t* cr, uint8_t* bgr,
                        size_t count);
};

// The kernels of the CPU level in force.
DecodeRows decode_rows();

DecodeRows decode_rows_scalar();

} // namespace kirvo
