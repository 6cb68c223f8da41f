// Row kernels of the zooms, one set per level of the processor.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kirvo {

struct ZoomRows {
    // Pixel i of `to` becomes the one of `from` at byte offsets[i]. The byte before `from` may be
    // read.
    using Gather = void (*)(uint8_t* to, const uint8_t* from, const uint32_t* offsets,
                            size_t count);
    // Adds a row of bytes to their sums.
    using AddRow = void (*)(uint16_t* sums, const uint8_t* row, size_t bytes);
    // Means of count boxes of 24-bit pixels that lie side by side and are `rows` high: the sum of
    // a box shifted right. A box has at most 256 pixels. Rows are row_step bytes apart.
    using Means = void (*)(uint8_t* to, const uint8_t* from, ptrdiff_t row_step, size_t rows,
                           size_t count, int shift);

    Gather gather[4]; // by the pixel's bytes less 1
    AddRow add_row;
    Means means_of_2, means_of_4; // columns wide
};

extern const ZoomRows zoom_rows_scalar;
// Each replaces the kernels that its instructions make faster.
namespace sse2 {
void improve(ZoomRows& rows);
}
namespace avx2 {
void improve(ZoomRows& rows);
}

ZoomRows zoom_rows();

} // namespace kirvo
