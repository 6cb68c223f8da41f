// Row kernels between pixel words and 24-bit pixels, one set per level of the processor.
//
// Both ways of converting are the same operation on 32-bit words: a pixel word becomes the word
// blue | green << 8 | red << 16, or back, by moving three bit fields. This header is plain data, so
// that files compiled for one instruction set may include it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kirvo {

// One bit field on its way from a word to another. At least one of the counts is 0; both are below
// 32.
struct FieldMove {
    uint32_t right, left;
    uint32_t keep; // bits of the result
};

struct PixelMoves {
    FieldMove channel[3];
};

// Each converts count pixels, from any address to any address, and touches no byte beyond them.
using PixelRow = void (*)(const uint8_t* from, uint8_t* to, size_t count, const PixelMoves& moves);

struct PixelRows {
    PixelRow unpack16, unpack32; // words to 24-bit pixels
    PixelRow pack16, pack32;     // 24-bit pixels to words
};

extern const PixelRows pixel_rows_scalar;
namespace sse2 {
extern const PixelRows pixel_rows;
}
namespace avx2 {
extern const PixelRows pixel_rows;
}
namespace avx512 {
extern const PixelRows pixel_rows; // needs VBMI
}

} // namespace kirvo
