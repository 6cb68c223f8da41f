#include "core/pixel_rows.hpp"

#include <immintrin.h>

namespace kirvo::avx512 {

namespace {

constexpr size_t block = 16; // pixels a step: one vector of words

struct Moves {
    struct Field {
        __m128i right, left;
        __m512i keep;
    };
    Field field[3];

    explicit Moves(const PixelMoves& moves) {
        for (int c = 0; c < 3; ++c) {
            const FieldMove& move = moves.channel[c];
            field[c].right = _mm_cvtsi32_si128(static_cast<int>(move.right));
            field[c].left = _mm_cvtsi32_si128(static_cast<int>(move.left));
            field[c].keep = _mm512_set1_epi32(static_cast<int>(move.keep));
        }
    }
    static __m512i one(__m512i words, const Field& f) {
        return _mm512_and_si512(_mm512_sll_epi32(_mm512_srl_epi32(words, f.right), f.left),
                                f.keep);
    }
    __m512i operator()(__m512i words) const {
        return _mm512_or_si512(_mm512_or_si512(one(words, field[0]), one(words, field[1])),
                               one(words, field[2]));
    }
};

// Which pixels, and which of their 24-bit bytes, a step works on.
struct Lanes {
    __mmask16 pixels;
    __mmask64 bytes;

    explicit Lanes(size_t count)
        : pixels(static_cast<__mmask16>((1u << count) - 1)),
          bytes((static_cast<__mmask64>(1) << (3 * count)) - 1) {}
};

alignas(64) constexpr uint8_t close_up[64] = {
    0,  1,  2,  4,  5,  6,  8,  9,  10, 12, 13, 14, 16, 17, 18, 20, 21, 22, 24, 25, 26, 28,
    29, 30, 32, 33, 34, 36, 37, 38, 40, 41, 42, 44, 45, 46, 48, 49, 50, 52, 53, 54, 56, 57,
    58, 60, 61, 62};
// The top byte of each word may hold anything: no move keeps it.
alignas(64) constexpr uint8_t spread[64] = {
    0,  1,  2,  0,  3,  4,  5,  0,  6,  7,  8,  0,  9,  10, 11, 0,  12, 13, 14, 0,  15, 16,
    17, 0,  18, 19, 20, 0,  21, 22, 23, 0,  24, 25, 26, 0,  27, 28, 29, 0,  30, 31, 32, 0,
    33, 34, 35, 0,  36, 37, 38, 0,  39, 40, 41, 0,  42, 43, 44, 0,  45, 46, 47, 0};

void store_closed(uint8_t* bgr, Lanes lanes, __m512i words) {
    _mm512_mask_storeu_epi8(bgr, lanes.bytes,
                            _mm512_permutexvar_epi8(_mm512_load_si512(close_up), words));
}

__m512i load_spread(const uint8_t* bgr, Lanes lanes) {
    return _mm512_permutexvar_epi8(_mm512_load_si512(spread),
                                   _mm512_maskz_loadu_epi8(lanes.bytes, bgr));
}

void from16to24(const uint8_t* row, uint8_t* bgr, size_t count, const PixelMoves& moves) {
    const Moves move(moves);
    for (size_t i = 0; i < count; i += block) {
        const Lanes lanes(count - i < block ? count - i : block);
        const __m256i words = _mm256_maskz_loadu_epi16(lanes.pixels, row + 2 * i);
        store_closed(bgr + 3 * i, lanes, move(_mm512_cvtepu16_epi32(words)));
    }
}

void from32to24(const uint8_t* row, uint8_t* bgr, size_t count, const PixelMoves& moves) {
    const Moves move(moves);
    for (size_t i = 0; i < count; i += block) {
        const Lanes lanes(count - i < block ? count - i : block);
        const __m512i words = _mm512_maskz_loadu_epi32(lanes.pixels, row + 4 * i);
        store_closed(bgr + 3 * i, lanes, move(words));
    }
}

void from24to16(const uint8_t* bgr, uint8_t* row, size_t count, const PixelMoves& moves) {
    const Moves move(moves);
    for (size_t i = 0; i < count; i += block) {
        const Lanes lanes(count - i < block ? count - i : block);
        const __m512i words = move(load_spread(bgr + 3 * i, lanes));
        _mm256_mask_storeu_epi16(row + 2 * i, lanes.pixels, _mm512_cvtepi32_epi16(words));
    }
}

void from32to16(const uint8_t* from, uint8_t* to, size_t count, const PixelMoves& moves) {
    const Moves move(moves);
    for (size_t i = 0; i < count; i += block) {
        const Lanes lanes(count - i < block ? count - i : block);
        const __m512i words = move(_mm512_maskz_loadu_epi32(lanes.pixels, from + 4 * i));
        _mm256_mask_storeu_epi16(to + 2 * i, lanes.pixels, _mm512_cvtepi32_epi16(words));
    }
}

void from24to32(const uint8_t* bgr, uint8_t* row, size_t count, const PixelMoves& moves) {
    const Moves move(moves);
    for (size_t i = 0; i < count; i += block) {
        const Lanes lanes(count - i < block ? count - i : block);
        const __m512i words = move(load_spread(bgr + 3 * i, lanes));
        _mm512_mask_storeu_epi32(row + 4 * i, lanes.pixels, words);
    }
}

void from16to32(const uint8_t* from, uint8_t* to, size_t count, const PixelMoves& moves) {
    const Moves move(moves);
    for (size_t i = 0; i < count; i += block) {
        const Lanes lanes(count - i < block ? count - i : block);
        const __m256i words = _mm256_maskz_loadu_epi16(lanes.pixels, from + 2 * i);
        _mm512_mask_storeu_epi32(to + 4 * i, lanes.pixels, move(_mm512_cvtepu16_epi32(words)));
    }
}

} // namespace

const PixelRows pixel_rows = {from16to24, from32to24, from24to16,
                              from32to16, from24to32, from16to32};

} // namespace kirvo::avx512
