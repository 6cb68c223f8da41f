// Row kernels between pixels of 2, 3 and 4 bytes, one set per level of the processor.
//
// Every conversion is the same operation on 32-bit words: a pixel word becomes another by moving
// three bit fields. The word of a 24-bit pixel is blue | green << 8 | red << 16. This header is
// plain data, so that files compiled for one instruction set may include it.
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
    PixelRow from16to24, from32to24, from24to16, from32to16, from24to32, from16to32;
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
