#include "core/pixel_rows.hpp"

#include <emmintrin.h>

namespace kirvo::sse2 {

namespace {

constexpr size_t block = 16; // pixels a step: three vectors of 24-bit pixels

struct Moves {
    struct Field {
        __m128i right, left, keep;
    };
    Field field[3];

    explicit Moves(const PixelMoves& moves) {
        for (int c = 0; c < 3; ++c) {
            const FieldMove& move = moves.channel[c];
            field[c].right = _mm_cvtsi32_si128(static_cast<int>(move.right));
            field[c].left = _mm_cvtsi32_si128(static_cast<int>(move.left));
            field[c].keep = _mm_set1_epi32(static_cast<int>(move.keep));
        }
    }
    static __m128i one(__m128i words, const Field& f) {
        return _mm_and_si128(_mm_sll_epi32(_mm_srl_epi32(words, f.right), f.left), f.keep);
    }
    __m128i operator()(__m128i words) const {
        return _mm_or_si128(_mm_or_si128(one(words, field[0]), one(words, field[1])),
                            one(words, field[2]));
    }
};

__m128i load(const uint8_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

void store(uint8_t* to, __m128i value) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), value);
}

// Four words with a zero top byte, closed up to 12 bytes and zeros.
__m128i close_up(__m128i words) {
    const __m128i first = _mm_set_epi32(0, 0x00FFFFFF, 0, 0x00FFFFFF);
    const __m128i low_half = _mm_set_epi32(0, 0, -1, -1);
    const __m128i pairs = _mm_or_si128(_mm_and_si128(words, first),
                                       _mm_srli_epi64(_mm_andnot_si128(first, words), 8));
    return _mm_or_si128(_mm_and_si128(pairs, low_half),
                        _mm_srli_si128(_mm_andnot_si128(low_half, pairs), 2));
}

// The first 12 bytes spread to four words. Their top bytes are whatever comes: no move keeps them.
__m128i spread(__m128i bytes) {
    const __m128i first = _mm_set_epi32(0, 0x00FFFFFF, 0, 0x00FFFFFF);
    const __m128i pairs = _mm_unpacklo_epi64(bytes, _mm_srli_si128(bytes, 6));
    return _mm_or_si128(_mm_and_si128(pairs, first),
                        _mm_slli_epi64(_mm_andnot_si128(first, pairs), 8));
}

void store_closed(uint8_t* bgr, const __m128i (&words)[4]) {
    const __m128i a = close_up(words[0]), b = close_up(words[1]), c = close_up(words[2]),
                  d = close_up(words[3]);
    store(bgr, _mm_or_si128(a, _mm_slli_si128(b, 12)));
    store(bgr + 16, _mm_or_si128(_mm_srli_si128(b, 4), _mm_slli_si128(c, 8)));
    store(bgr + 32, _mm_or_si128(_mm_srli_si128(c, 8), _mm_slli_si128(d, 4)));
}

void load_spread(const uint8_t* bgr, __m128i (&words)[4]) {
    const __m128i a = load(bgr), b = load(bgr + 16), c = load(bgr + 32);
    words[0] = spread(a);
    words[1] = spread(_mm_or_si128(_mm_srli_si128(a, 12), _mm_slli_si128(b, 4)));
    words[2] = spread(_mm_or_si128(_mm_srli_si128(b, 8), _mm_slli_si128(c, 8)));
    words[3] = spread(_mm_srli_si128(c, 4));
}

// Narrows without the signed saturation of the only pack that there is.
__m128i low_words(__m128i a, __m128i b) {
    return _mm_packs_epi32(_mm_srai_epi32(_mm_slli_epi32(a, 16), 16),
                           _mm_srai_epi32(_mm_slli_epi32(b, 16), 16));
}

void from16to24(const uint8_t* row, uint8_t* bgr, size_t count, const PixelMoves& moves) {
    const Moves move(moves);
    const __m128i zero = _mm_setzero_si128();
    for (; count >= block; count -= block, row += 2 * block, bgr += 3 * block) {
        const __m128i a = load(row), b = load(row + 16);
        const __m128i words[4] = {
            move(_mm_unpacklo_epi16(a, zero)), move(_mm_unpackhi_epi16(a, zero)),
            move(_mm_unpacklo_epi16(b, zero)), move(_mm_unpackhi_epi16(b, zero))};
        store_closed(bgr, words);
    }
    pixel_rows_scalar.from16to24(row, bgr, count, moves);
}

void from32to24(const uint8_t* row, uint8_t* bgr, size_t count, const PixelMoves& moves) {
    const Moves move(moves);
    for (; count >= block; count -= block, row += 4 * block, bgr += 3 * block) {
        const __m128i words[4] = {move(load(row)), move(load(row + 16)), move(load(row + 32)),
                                  move(load(row + 48))};
        store_closed(bgr, words);
    }
    pixel_rows_scalar.from32to24(row, bgr, count, moves);
}

void from24to16(const uint8_t* bgr, uint8_t* row, size_t count, const PixelMoves& moves) {
    const Moves move(moves);
    for (; count >= block; count -= block, bgr += 3 * block, row += 2 * block) {
        __m128i words[4];
        load_spread(bgr, words);
        store(row, low_words(move(words[0]), move(words[1])));
        store(row + 16, low_words(move(words[2]), move(words[3])));
    }
    pixel_rows_scalar.from24to16(bgr, row, count, moves);
}

void from32to16(const uint8_t* from, uint8_t* to, size_t count, const PixelMoves& moves) {
    const Moves move(moves);
    for (; count >= block; count -= block, from += 4 * block, to += 2 * block) {
        store(to, low_words(move(load(from)), move(load(from + 16))));
        store(to + 16, low_words(move(load(from + 32)), move(load(from + 48))));
    }
    pixel_rows_scalar.from32to16(from, to, count, moves);
}

void from24to32(const uint8_t* bgr, uint8_t* row, size_t count, const PixelMoves& moves) {
    const Moves move(moves);
    for (; count >= block; count -= block, bgr += 3 * block, row += 4 * block) {
        __m128i words[4];
        load_spread(bgr, words);
        for (int i = 0; i < 4; ++i)
            store(row + 16 * i, move(words[i]));
    }
    pixel_rows_scalar.from24to32(bgr, row, count, moves);
}

void from16to32(const uint8_t* from, uint8_t* to, size_t count, const PixelMoves& moves) {
    const Moves move(moves);
    const __m128i zero = _mm_setzero_si128();
    for (; count >= block; count -= block, from += 2 * block, to += 4 * block) {
        for (int half = 0; half < 2; ++half) {
            const __m128i words = load(from + 16 * half);
            store(to + 32 * half, move(_mm_unpacklo_epi16(words, zero)));
            store(to + 32 * half + 16, move(_mm_unpackhi_epi16(words, zero)));
        }
    }
    pixel_rows_scalar.from16to32(from, to, count, moves);
}

} // namespace

const PixelRows pixel_rows = {from16to24, from32to24, from24to16,
                              from32to16, from24to32, from16to32};

} // namespace kirvo::sse2
