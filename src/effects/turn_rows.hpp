// Kernels that rearrange pixels of 1, 2, 3 or 4 bytes, one set per level of the processor.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kirvo {

struct TurnRows {
    // Exchanges the count pixels that begin at left with those that end at right_end, in reverse
    // order: the first with the last. The two runs do not overlap.
    using Exchange = void (*)(uint8_t* left, uint8_t* right_end, size_t count);
    // Turns rows into columns: pixel x of source row k becomes pixel k of destination row x.
    // Steps are bytes from one row to the next and may be negative.
    using Transpose = void (*)(uint8_t* to, ptrdiff_t to_step, const uint8_t* from,
                               ptrdiff_t from_step, size_t columns, size_t rows);

    // By the pixel's bytes less 1.
    Exchange exchange_reversed[4];
    Transpose transpose[4];
};

extern const TurnRows turn_rows_scalar;
// Each replaces the kernels that its instructions make faster.
namespace avx2 {
void improve(TurnRows& rows);
}
namespace avx512 {
void improve(TurnRows& rows); // needs VBMI
}

TurnRows turn_rows();

} // namespace kirvo
