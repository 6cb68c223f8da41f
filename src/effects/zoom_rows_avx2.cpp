#include "effects/zoom_rows.hpp"

#include <immintrin.h>

namespace kirvo::avx2 {

namespace {

void add_row(uint16_t* sums, const uint8_t* row, size_t bytes) {
    size_t i = 0;
    for (; i + 16 <= bytes; i += 16) {
        const __m256i wide =
            _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(row + i)));
        auto* const at = reinterpret_cast<__m256i*>(sums + i);
        _mm256_storeu_si256(at, _mm256_add_epi16(_mm256_loadu_si256(at), wide));
    }
    zoom_rows_scalar.add_row(sums + i, row + i, bytes - i);
}

// The sums over rows and pairs of columns of four pixels in each half: the six numbers of a half
// are the channels of its first pair, then of its second.
__m256i pair_sums(const uint8_t* low, const uint8_t* high, ptrdiff_t row_step, size_t rows) {
    const __m256i join_pairs = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 3, 1, 4, 2, 5, 6, 9, 7, 10, 8, 11, -1, -1, -1, -1));
    const __m256i ones = _mm256_set1_epi8(1);
    __m256i sums = _mm256_setzero_si256();
    for (size_t k = 0; k < rows; ++k, low += row_step, high += row_step) {
        const __m256i pixels = _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(high),
                                                   reinterpret_cast<const __m128i*>(low));
        sums = _mm256_add_epi16(
            sums, _mm256_maddubs_epi16(_mm256_shuffle_epi8(pixels, join_pairs), ones));
    }
    return sums;
}

// The first twelve bytes of both halves.
void store_halves(uint8_t* to, __m256i pixels) {
    const __m128i high = _mm256_extracti128_si256(pixels, 1);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_castsi256_si128(pixels));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to + 12), high);
    const int last = _mm_extract_epi32(high, 2);
    __builtin_memcpy(to + 20, &last, sizeof last);
}

// Eight boxes a step. Loads reach four bytes beyond their boxes, so the last step is left out.
void means_of_2(uint8_t* to, const uint8_t* from, ptrdiff_t row_step, size_t rows, size_t count,
                int shift) {
    const __m128i shift_count = _mm_cvtsi32_si128(shift);
    const __m256i close_up = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, -1, -1, -1, -1));
    for (; count > 8; count -= 8, to += 24, from += 48) {
        const __m256i outer = pair_sums(from, from + 24, row_step, rows);
        const __m256i inner = pair_sums(from + 12, from + 36, row_step, rows);
        const __m256i means = _mm256_packus_epi16(_mm256_srl_epi16(outer, shift_count),
                                                  _mm256_srl_epi16(inner, shift_count));
        store_halves(to, _mm256_shuffle_epi8(means, close_up));
    }
    zoom_rows_scalar.means_of_2(to, from, row_step, rows, count, shift);
}

// The means of one box in the first three numbers of each half.
__m256i means_of_4_pixels(const uint8_t* low, const uint8_t* high, ptrdiff_t row_step, size_t rows,
                          __m128i shift) {
    const __m256i pairs = pair_sums(low, high, row_step, rows);
    return _mm256_srl_epi16(_mm256_add_epi16(pairs, _mm256_srli_si256(pairs, 6)), shift);
}

void means_of_4(uint8_t* to, const uint8_t* from, ptrdiff_t row_step, size_t rows, size_t count,
                int shift) {
    const __m128i shift_count = _mm_cvtsi32_si128(shift);
    const __m256i first = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 1, 2, 8, 9, 10, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1));
    const __m256i second = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(-1, -1, -1, -1, -1, -1, 0, 1, 2, 8, 9, 10, -1, -1, -1, -1));
    for (; count > 8; count -= 8, to += 24, from += 96) {
        const auto box = [&](int i) {
            return means_of_4_pixels(from + 12 * i, from + 48 + 12 * i, row_step, rows,
                                     shift_count);
        };
        store_halves(
            to, _mm256_or_si256(_mm256_shuffle_epi8(_mm256_packus_epi16(box(0), box(1)), first),
                                _mm256_shuffle_epi8(_mm256_packus_epi16(box(2), box(3)), second)));
    }
    zoom_rows_scalar.means_of_4(to, from, row_step, rows, count, shift);
}

} // namespace

void improve(ZoomRows& rows) {
    rows.add_row = add_row;
    rows.means_of_2 = means_of_2;
    rows.means_of_4 = means_of_4;
}

} // namespace kirvo::avx2
