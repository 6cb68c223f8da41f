// The per-sample work of a decode as kernels: blocks of coefficients to samples, rows of samples to
// pixels. Samples are 16-bit, centred on 0 and not clamped: -4096 to 4095.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kirvo {

// What chroma adds to the luma of a pixel in each channel, the 128 of the luma included.
struct ChromaTerms {
    int16_t *blue, *green, *red;
};

// Rows of samples and terms may be read, and those of terms written, up to the next multiple of 32.
// Pixels are blue, green, red bytes, and exactly count are written.
struct DecodeRows {
    // Inverse transform of a Block into 8 rows of 8 samples. Coefficients after zigzag position
    // last are 0.
    void (*inverse_dct)(const int16_t* block, int32_t last, int16_t* samples, ptrdiff_t stride);
    void (*chroma_terms)(const int16_t* cb, const int16_t* cr, ChromaTerms terms, size_t count);
    void (*grey)(const int16_t* y, uint8_t* bgr, size_t count);
    // One term for each pixel, or for two of them side by side.
    void (*colour)(const int16_t* y, ChromaTerms terms, uint8_t* bgr, size_t count);
    void (*colour_wide)(const int16_t* y, ChromaTerms terms, uint8_t* bgr, size_t count);
};

// The kernels of the CPU level in force.
const DecodeRows& decode_rows();

extern const DecodeRows decode_rows_scalar;
namespace sse2 {
extern const DecodeRows decode_rows;
}
namespace avx2 {
extern const DecodeRows decode_rows;
}

} // namespace kirvo
