#include "effects/zoom_rows.hpp"

#include <emmintrin.h>

namespace kirvo::sse2 {

namespace {

// Eight bytes as 16-bit numbers.
__m128i load_wide(const uint8_t* from) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from)),
                             _mm_setzero_si128());
}

// The first three numbers of each load are one pixel's channels. A box is done at a time; loads
// and stores reach up to five bytes beyond it, so the last is left to the plain loop.
template<size_t columns, ZoomRows::Means ZoomRows::*rest>
void means(uint8_t* to, const uint8_t* from, ptrdiff_t row_step, size_t rows, size_t count,
           int shift) {
    const __m128i shift_count = _mm_cvtsi32_si128(shift);
    for (; count > 1; --count, to += 3, from += 3 * columns) {
        __m128i sums = _mm_setzero_si128();
        const uint8_t* row = from;
        for (size_t k = 0; k < rows; ++k, row += row_step)
            for (size_t x = 0; x < columns; ++x)
                sums = _mm_add_epi16(sums, load_wide(row + 3 * x));
        const __m128i means = _mm_srl_epi16(sums, shift_count);
        const int pixel = _mm_cvtsi128_si32(_mm_packus_epi16(means, means));
        __builtin_memcpy(to, &pixel, sizeof pixel);
    }
    (zoom_rows_scalar.*rest)(to, from, row_step, rows, count, shift);
}

} // namespace

void improve(ZoomRows& rows) {
    rows.means_of_2 = means<2, &ZoomRows::means_of_2>;
    rows.means_of_4 = means<4, &ZoomRows::means_of_4>;
}

} // namespace kirvo::sse2
