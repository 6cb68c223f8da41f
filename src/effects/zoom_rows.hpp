// Row kernels of the zooms, one set per level of the processor.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kirvo {

struct ZoomRows {
    // Pixel i of `to` becomes the one of `from` at byte offsets[i]; offsets do not fall.
    using Gather = void (*)(uint8_t* to, const uint8_t* from, const uint32_t* offsets,
                            size_t count);
    // Adds a row of bytes to their sums.
    using AddRow = void (*)(uint16_t* sums, const uint8_t* row, size_t bytes);

    Gather gather[4]; // by the pixel's bytes less 1
    AddRow add_row;
};

extern const ZoomRows zoom_rows_scalar;

const ZoomRows& zoom_rows();

} // namespace kirvo
