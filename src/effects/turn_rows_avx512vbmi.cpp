#include "effects/turn_rows.hpp"

#include <immintrin.h>

namespace kirvo::avx512 {

namespace {

__mmask64 first_bytes(size_t count) {
    return count >= 64 ? ~__mmask64{0} : (__mmask64{1} << count) - 1;
}

constexpr size_t side = 16; // of a tile: one vector of words

alignas(64) constexpr uint8_t spread[64] = {
    0,  1,  2,  0,  3,  4,  5,  0,  6,  7,  8,  0,  9,  10, 11, 0,  12, 13, 14, 0,  15, 16,
    17, 0,  18, 19, 20, 0,  21, 22, 23, 0,  24, 25, 26, 0,  27, 28, 29, 0,  30, 31, 32, 0,
    33, 34, 35, 0,  36, 37, 38, 0,  39, 40, 41, 0,  42, 43, 44, 0,  45, 46, 47, 0};
alignas(64) constexpr uint8_t close_up[64] = {
    0,  1,  2,  4,  5,  6,  8,  9,  10, 12, 13, 14, 16, 17, 18, 20, 21, 22, 24, 25, 26, 28, 29, 30,
    32, 33, 34, 36, 37, 38, 40, 41, 42, 44, 45, 46, 48, 49, 50, 52, 53, 54, 56, 57, 58, 60, 61, 62};

// Up to sixteen pixels as words; the top bytes of 3-byte pixels may hold anything.
template<int bytes>
__m512i load_words(const uint8_t* from, __mmask64 lanes) {
    const __m512i pixels = _mm512_maskz_loadu_epi8(lanes, from);
    if constexpr (bytes == 1)
        return _mm512_cvtepu8_epi32(_mm512_castsi512_si128(pixels));
    else if constexpr (bytes == 2)
        return _mm512_cvtepu16_epi32(_mm512_castsi512_si256(pixels));
    else if constexpr (bytes == 3)
        return _mm512_permutexvar_epi8(_mm512_load_si512(spread), pixels);
    else
        return pixels;
}

template<int bytes>
void store_words(uint8_t* to, __mmask64 lanes, __m512i words) {
    __m512i pixels = words;
    if constexpr (bytes == 1)
        pixels = _mm512_castsi128_si512(_mm512_cvtepi32_epi8(words));
    else if constexpr (bytes == 2)
        pixels = _mm512_castsi256_si512(_mm512_cvtepi32_epi16(words));
    else if constexpr (bytes == 3)
        pixels = _mm512_permutexvar_epi8(_mm512_load_si512(close_up), words);
    _mm512_mask_storeu_epi8(to, lanes, pixels);
}

// Sixteen vectors of words, rows to columns: in 4 x 4 tiles, then the tiles.
void transpose_words(__m512i (&v)[side]) {
    __m512i t[side];
    for (size_t i = 0; i < side; i += 4) {
        const __m512i low01 = _mm512_unpacklo_epi32(v[i], v[i + 1]);
        const __m512i high01 = _mm512_unpackhi_epi32(v[i], v[i + 1]);
        const __m512i low23 = _mm512_unpacklo_epi32(v[i + 2], v[i + 3]);
        const __m512i high23 = _mm512_unpackhi_epi32(v[i + 2], v[i + 3]);
        t[i] = _mm512_unpacklo_epi64(low01, low23);
        t[i + 1] = _mm512_unpackhi_epi64(low01, low23);
        t[i + 2] = _mm512_unpacklo_epi64(high01, high23);
        t[i + 3] = _mm512_unpackhi_epi64(high01, high23);
    }
    for (size_t i = 0; i < 4; ++i) {
        const __m512i even0 = _mm512_shuffle_i32x4(t[i], t[i + 4], 0x88);
        const __m512i odd0 = _mm512_shuffle_i32x4(t[i], t[i + 4], 0xDD);
        const __m512i even1 = _mm512_shuffle_i32x4(t[i + 8], t[i + 12], 0x88);
        const __m512i odd1 = _mm512_shuffle_i32x4(t[i + 8], t[i + 12], 0xDD);
        v[i] = _mm512_shuffle_i32x4(even0, even1, 0x88);
        v[i + 4] = _mm512_shuffle_i32x4(odd0, odd1, 0x88);
        v[i + 8] = _mm512_shuffle_i32x4(even0, even1, 0xDD);
        v[i + 12] = _mm512_shuffle_i32x4(odd0, odd1, 0xDD);
    }
}

template<int bytes>
void transpose_tile(uint8_t* to, ptrdiff_t to_step, const uint8_t* from, ptrdiff_t from_step,
                    size_t columns, size_t rows) {
    __m512i words[side];
    const __mmask64 from_lanes = first_bytes(columns * bytes);
    for (size_t k = 0; k < side; ++k, from += from_step)
        words[k] = k < rows ? load_words<bytes>(from, from_lanes) : _mm512_setzero_si512();
    transpose_words(words);
    const __mmask64 to_lanes = first_bytes(rows * bytes);
    for (size_t x = 0; x < side && x < columns; ++x, to += to_step)
        store_words<bytes>(to, to_lanes, words[x]);
}

template<int bytes>
void transpose(uint8_t* to, ptrdiff_t to_step, const uint8_t* from, ptrdiff_t from_step,
               size_t columns, size_t rows) {
    for (size_t x = 0; x < columns; x += side)
        for (size_t k = 0; k < rows; k += side) {
            uint8_t* const tile = to + static_cast<ptrdiff_t>(x) * to_step + k * bytes;
            const uint8_t* const source = from + static_cast<ptrdiff_t>(k) * from_step + x * bytes;
            if (columns - x >= side && rows - k >= side)
                transpose_tile<bytes>(tile, to_step, source, from_step, side, side);
            else
                transpose_tile<bytes>(tile, to_step, source, from_step,
                                      columns - x < side ? columns - x : side,
                                      rows - k < side ? rows - k : side);
        }
}

} // namespace

// Reversed runs are left to AVX2: masked stores and loads of neighbouring bytes wait for each
// other.
void improve(TurnRows& rows) {
    rows.transpose[0] = transpose<1>;
    rows.transpose[1] = transpose<2>;
    rows.transpose[2] = transpose<3>;
    rows.transpose[3] = transpose<4>;
}

} // namespace kirvo::avx512
