// Why the transform is exact: see decode_rows_avx2.cpp, of which this is the same on half the
// width.
#include "jpeg/decode_rows.hpp"

#include <cstring>
#include <emmintrin.h>

namespace kirvo::sse2 {

namespace {

constexpr int c1 = 32137, c2 = 30272, c3 = 27244, c4 = 23169, c5 = 18204, c6 = 12539, c7 = 6392;

__m128i load(const int16_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}
void store(int16_t* to, __m128i values) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), values);
}
__m128i pair(int first, int second) {
    return _mm_set1_epi32((first & 0xFFFF) | second << 16);
}
__m128i add(__m128i a, __m128i b) {
    return _mm_add_epi32(a, b);
}
__m128i sub(__m128i a, __m128i b) {
    return _mm_sub_epi32(a, b);
}
__m128i madd(__m128i a, __m128i b) {
    return _mm_madd_epi16(a, b);
}

// Four one-dimensional transforms side by side. in: the pairs of inputs 0 and 4, 2 and 6, 1 and 3,
// 5 and 7; out: the sums of outputs 0 to 7, bias added.
[[gnu::always_inline]] inline void transform(const __m128i in[4], __m128i bias, __m128i out[8]) {
    const __m128i sum04 = add(madd(in[0], pair(c4, c4)), bias);
    const __m128i difference04 = add(madd(in[0], pair(c4, -c4)), bias);
    const __m128i sum26 = madd(in[1], pair(c2, c6));
    const __m128i difference26 = madd(in[1], pair(c6, -c2));
    const __m128i even[4] = {add(sum04, sum26), add(difference04, difference26),
                             sub(difference04, difference26), sub(sum04, sum26)};
    const __m128i odd[4] = {
        add(madd(in[2], pair(c1, c3)), madd(in[3], pair(c5, c7))),
        add(madd(in[2], pair(c3, -c7)), madd(in[3], pair(-c1, -c5))),
        add(madd(in[2], pair(c5, -c1)), madd(in[3], pair(c7, c3))),
        add(madd(in[2], pair(c7, -c5)), madd(in[3], pair(c3, -c1))),
    };
#pragma GCC unroll 8
    for (int i = 0; i < 4; ++i) {
        out[i] = add(even[i], odd[i]);
        out[7 - i] = sub(even[i], odd[i]);
    }
}

// Sums of four rows by columns to two of the pairs of the second pass, columns 0 to 3 and 4 to 7.
[[gnu::always_inline]] inline void turn(const __m128i sums[8], __m128i pairs[2][2]) {
    __m128i columns[4]; // two columns each: both pairs of one, then of the other
#pragma GCC unroll 8
    for (int i = 0; i < 4; ++i)
        columns[i] = _mm_packs_epi32(_mm_srai_epi32(_mm_slli_epi32(sums[2 * i], 3), 16),
                                     _mm_srai_epi32(_mm_slli_epi32(sums[2 * i + 1], 3), 16));
#pragma GCC unroll 8
    for (int half = 0; half < 2; ++half) {
        const __m128 left = _mm_castsi128_ps(columns[2 * half]);
        const __m128 right = _mm_castsi128_ps(columns[2 * half + 1]);
        pairs[0][half] = _mm_castps_si128(_mm_shuffle_ps(left, right, 0x88));
        pairs[1][half] = _mm_castps_si128(_mm_shuffle_ps(left, right, 0xDD));
    }
}

void flat(int16_t mean, int16_t* samples, ptrdiff_t stride) {
    const auto row = static_cast<int16_t>(static_cast<uint32_t>(mean * c4) << 3 >> 16);
    const __m128i eight = _mm_set1_epi16(static_cast<int16_t>((row * c4 + (1 << 18)) >> 19));
#pragma GCC unroll 8
    for (int y = 0; y < 8; ++y)
        store(samples + y * stride, eight);
}

void inverse_dct(const int16_t* block, int32_t last, int16_t* samples, ptrdiff_t stride) {
    if (last == 0) {
        flat(block[0], samples, stride);
        return;
    }
    __m128i pairs[4][2]; // of vertical frequencies; columns 0 to 3 and 4 to 7
#pragma GCC unroll 8
    for (int half = 0; half < 2; ++half) {
        __m128i in[4], sums[8];
#pragma GCC unroll 8
        for (int i = 0; i < 4; ++i)
            in[i] = load(block + 16 * i + 8 * half);
        transform(in, _mm_setzero_si128(), sums);
        turn(sums, &pairs[2 * half]);
    }
    __m128i left[8], right[8];
#pragma GCC unroll 8
    for (int half = 0; half < 2; ++half) {
        const __m128i in[4] = {pairs[0][half], pairs[1][half], pairs[2][half], pairs[3][half]};
        transform(in, _mm_set1_epi32(1 << 18), half == 0 ? left : right);
    }
#pragma GCC unroll 8
    for (int y = 0; y < 8; ++y)
        store(samples + y * stride,
              _mm_packs_epi32(_mm_srai_epi32(left[y], 19), _mm_srai_epi32(right[y], 19)));
}

// The factors: see decode_rows_avx2.cpp.
void chroma_terms(const int16_t* cb_row, const int16_t* cr_row, ChromaTerms terms, size_t count) {
    const __m128i middle = _mm_set1_epi16(128);
    const __m128i green_factors = pair(-22525, 18724);
    for (size_t i = 0; i < count; i += 8) {
        const __m128i cb = load(cb_row + i), cr = load(cr_row + i);
        const __m128i blue =
            _mm_add_epi16(_mm_add_epi16(cb, cb), _mm_mulhi_epi16(cb, _mm_set1_epi16(-15073)));
        const __m128i red = _mm_add_epi16(cr, _mm_mulhi_epi16(cr, _mm_set1_epi16(26345)));
        const __m128i low = madd(_mm_unpacklo_epi16(cb, cr), green_factors);
        const __m128i high = madd(_mm_unpackhi_epi16(cb, cr), green_factors);
        const __m128i green =
            _mm_sub_epi16(_mm_packs_epi32(_mm_srai_epi32(low, 16), _mm_srai_epi32(high, 16)), cr);
        store(terms.blue + i, _mm_add_epi16(blue, middle));
        store(terms.green + i, _mm_add_epi16(green, middle));
        store(terms.red + i, _mm_add_epi16(red, middle));
    }
}

// Four pixels of 32 bits closed up to 12 bytes; the highest 4 become 0.
__m128i close_up(__m128i pixels) {
    const __m128i even = _mm_set_epi32(0, -1, 0, -1), lower = _mm_set_epi32(0, 0, -1, -1);
    const __m128i pairs = _mm_or_si128(_mm_and_si128(pixels, even),
                                       _mm_srli_epi64(_mm_andnot_si128(even, pixels), 8));
    return _mm_or_si128(_mm_and_si128(pairs, lower),
                        _mm_srli_si128(_mm_andnot_si128(lower, pairs), 2));
}

// 16 pixels of three channels.
[[gnu::always_inline]] inline void store_pixels(__m128i blue, __m128i green, __m128i red,
                                                uint8_t* bgr) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i blue_green[2] = {_mm_unpacklo_epi8(blue, green), _mm_unpackhi_epi8(blue, green)};
    const __m128i red_zero[2] = {_mm_unpacklo_epi8(red, zero), _mm_unpackhi_epi8(red, zero)};
    __m128i twelve[4];
#pragma GCC unroll 8
    for (int i = 0; i < 2; ++i) {
        twelve[2 * i] = close_up(_mm_unpacklo_epi16(blue_green[i], red_zero[i]));
        twelve[2 * i + 1] = close_up(_mm_unpackhi_epi16(blue_green[i], red_zero[i]));
    }
    auto* to = reinterpret_cast<__m128i*>(bgr);
    _mm_storeu_si128(to, _mm_or_si128(twelve[0], _mm_slli_si128(twelve[1], 12)));
    _mm_storeu_si128(to + 1,
                     _mm_or_si128(_mm_srli_si128(twelve[1], 4), _mm_slli_si128(twelve[2], 8)));
    _mm_storeu_si128(to + 2,
                     _mm_or_si128(_mm_srli_si128(twelve[2], 8), _mm_slli_si128(twelve[3], 4)));
}

// Samples or terms of 16 pixels.
struct Samples {
    __m128i first, second;
};

Samples load_each(const int16_t* from) {
    return {load(from), load(from + 8)};
}

Samples load_wide(const int16_t* from) {
    const __m128i terms = load(from);
    return {_mm_unpacklo_epi16(terms, terms), _mm_unpackhi_epi16(terms, terms)};
}

__m128i channel(const Samples& y, const Samples& terms) {
    return _mm_packus_epi16(_mm_add_epi16(y.first, terms.first),
                            _mm_add_epi16(y.second, terms.second));
}

constexpr size_t step = 16;

// Whole steps straight into the row, the last pixels by way of a buffer.
template<typename Convert>
[[gnu::always_inline]] inline void for_steps(uint8_t* bgr, size_t count, const Convert& convert) {
    size_t i = 0;
    for (; i + step <= count; i += step)
        convert(i, bgr + 3 * i);
    if (i == count)
        return;
    uint8_t rest[3 * step];
    convert(i, rest);
    std::memcpy(bgr + 3 * i, rest, 3 * (count - i));
}

void grey(const int16_t* y, uint8_t* bgr, size_t count) {
    const Samples middle = {_mm_set1_epi16(128), _mm_set1_epi16(128)};
    for_steps(bgr, count, [&](size_t i, uint8_t* to) {
        const __m128i level = channel(load_each(y + i), middle);
        store_pixels(level, level, level, to);
    });
}

void colour(const int16_t* y, ChromaTerms terms, uint8_t* bgr, size_t count) {
    for_steps(bgr, count, [&](size_t i, uint8_t* to) {
        const Samples luma = load_each(y + i);
        store_pixels(channel(luma, load_each(terms.blue + i)),
                     channel(luma, load_each(terms.green + i)),
                     channel(luma, load_each(terms.red + i)), to);
    });
}

void colour_wide(const int16_t* y, ChromaTerms terms, uint8_t* bgr, size_t count) {
    for_steps(bgr, count, [&](size_t i, uint8_t* to) {
        const Samples luma = load_each(y + i);
        store_pixels(channel(luma, load_wide(terms.blue + i / 2)),
                     channel(luma, load_wide(terms.green + i / 2)),
                     channel(luma, load_wide(terms.red + i / 2)), to);
    });
}

} // namespace

const DecodeRows decode_rows = {inverse_dct, chroma_terms, grey, colour, colour_wide};

} // namespace kirvo::sse2
