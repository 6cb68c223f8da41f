#include "core/pixel_rows.hpp"

#include <immintrin.h>

namespace kirvo::avx2 {

namespace {

constexpr size_t block = 8; // pixels a step: one vector of words

struct Moves {
    struct Field {
        __m128i right, left;
        __m256i keep;
    };
    Field field[3];

    explicit Moves(const PixelMoves& moves) {
        for (int c = 0; c < 3; ++c) {
            const FieldMove& move = moves.channel[c];
            field[c].right = _mm_cvtsi32_si128(static_cast<int>(move.right));
            field[c].left = _mm_cvtsi32_si128(static_cast<int>(move.left));
            field[c].keep = _mm256_set1_epi32(static_cast<int>(move.keep));
        }
    }
    static __m256i one(__m256i words, const Field& f) {
        return _mm256_and_si256(_mm256_sll_epi32(_mm256_srl_epi32(words, f.right), f.left),
                                f.keep);
    }
    __m256i operator()(__m256i words) const {
        return _mm256_or_si256(_mm256_or_si256(one(words, field[0]), one(words, field[1])),
                               one(words, field[2]));
    }
};

__m128i load(const uint8_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

__m256i load_words(const uint8_t* from) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
}

void store_words(uint8_t* to, __m256i words) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), words);
}

// Eight words of which the upper halves are 0.
void store_narrow(uint8_t* to, __m256i words) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to),
                     _mm_packus_epi32(_mm256_castsi256_si128(words),
                                      _mm256_extracti128_si256(words, 1)));
}

// Eight words closed up to 24 bytes.
void store_closed(uint8_t* bgr, __m256i words) {
    const __m256i close_up = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1));
    const __m256i join_halves = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7);
    const __m256i bytes =
        _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(words, close_up), join_halves);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bgr), _mm256_castsi256_si128(bytes));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(bgr + 16), _mm256_extracti128_si256(bytes, 1));
}

// 24 bytes spread to eight words. The upper half is loaded from 4 bytes before its first pixel.
__m256i load_spread(const uint8_t* bgr) {
    const __m256i spread =
        _mm256_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1, //
                         4, 5, 6, -1, 7, 8, 9, -1, 10, 11, 12, -1, 13, 14, 15, -1);
    const __m256i bytes =
        _mm256_inserti128_si256(_mm256_castsi128_si256(load(bgr)), load(bgr + 8), 1);
    return _mm256_shuffle_epi8(bytes, spread);
}

void from16to24(const uint8_t* row, uint8_t* bgr, size_t count, const PixelMoves& moves) {
    const Moves move(moves);
    for (; count >= block; count -= block, row += 2 * block, bgr += 3 * block)
        store_closed(bgr, move(_mm256_cvtepu16_epi32(load(row))));
    pixel_rows_scalar.from16to24(row, bgr, count, moves);
}

void from32to24(const uint8_t* row, uint8_t* bgr, size_t count, const PixelMoves& moves) {
    const Moves move(moves);
    for (; count >= block; count -= block, row += 4 * block, bgr += 3 * block)
        store_closed(bgr, move(load_words(row)));
    pixel_rows_scalar.from32to24(row, bgr, count, moves);
}

void from24to16(const uint8_t* bgr, uint8_t* row, size_t count, const PixelMoves& moves) {
    const Moves move(moves);
    for (; count >= block; count -= block, bgr += 3 * block, row += 2 * block)
        store_narrow(row, move(load_spread(bgr)));
    pixel_rows_scalar.from24to16(bgr, row, count, moves);
}

void from32to16(const uint8_t* from, uint8_t* to, size_t count, const PixelMoves& moves) {
    const Moves move(moves);
    for (; count >= block; count -= block, from += 4 * block, to += 2 * block)
        store_narrow(to, move(load_words(from)));
    pixel_rows_scalar.from32to16(from, to, count, moves);
}

void from24to32(const uint8_t* bgr, uint8_t* row, size_t count, const PixelMoves& moves) {
    const Moves move(moves);
    for (; count >= block; count -= block, bgr += 3 * block, row += 4 * block)
        store_words(row, move(load_spread(bgr)));
    pixel_rows_scalar.from24to32(bgr, row, count, moves);
}

void from16to32(const uint8_t* from, uint8_t* to, size_t count, const PixelMoves& moves) {
    const Moves move(moves);
    for (; count >= block; count -= block, from += 2 * block, to += 4 * block)
        store_words(to, move(_mm256_cvtepu16_epi32(load(from))));
    pixel_rows_scalar.from16to32(from, to, count, moves);
}

} // namespace

const PixelRows pixel_rows = {from16to24, from32to24, from24to16,
                              from32to16, from24to32, from16to32};

} // namespace kirvo::avx2
