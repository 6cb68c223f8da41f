// The inverse transform with 16 x 16 -> 32-bit multiply-adds is exact. The first pass is stated
// with the factors times 8, in sums that wrap at 32 bits, shifted right by 16. A product of 16-bit
// values with factors below 2^15 and the sum of two of them fit 32 bits; every further sum wraps as
// stated, and so does the multiplication of the whole sum by 8 in place of each factor. The shifted
// result has 16 bits, so the second pass runs on 16-bit values again; it needs no factor of 8.
#include "jpeg/decode_rows.hpp"

#include <cstring>
#include <immintrin.h>

namespace kirvo::avx2 {

namespace {

constexpr int c1 = 32137, c2 = 30272, c3 = 27244, c4 = 23169, c5 = 18204, c6 = 12539, c7 = 6392;

__m256i pair(int first, int second) {
    return _mm256_set1_epi32((first & 0xFFFF) | second << 16);
}
__m256i add(__m256i a, __m256i b) {
    return _mm256_add_epi32(a, b);
}
__m256i sub(__m256i a, __m256i b) {
    return _mm256_sub_epi32(a, b);
}
__m256i madd(__m256i a, __m256i b) {
    return _mm256_madd_epi16(a, b);
}

// Eight one-dimensional transforms side by side. in: the pairs of inputs 0 and 4, 2 and 6, 1 and 3,
// 5 and 7; out: the sums of outputs 0 to 7, bias added.
[[gnu::always_inline]] inline void transform(const __m256i in[4], __m256i bias, __m256i out[8]) {
    const __m256i sum04 = add(madd(in[0], pair(c4, c4)), bias);
    const __m256i difference04 = add(madd(in[0], pair(c4, -c4)), bias);
    const __m256i sum26 = madd(in[1], pair(c2, c6));
    const __m256i difference26 = madd(in[1], pair(c6, -c2));
    const __m256i even[4] = {add(sum04, sum26), add(difference04, difference26),
                             sub(difference04, difference26), sub(sum04, sum26)};
    const __m256i odd[4] = {
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

__m256i shuffle_words(__m256i a, __m256i b, int odd) {
    const __m256 x = _mm256_castsi256_ps(a), y = _mm256_castsi256_ps(b);
    return _mm256_castps_si256(odd != 0 ? _mm256_shuffle_ps(x, y, 0xDD)
                                        : _mm256_shuffle_ps(x, y, 0x88));
}

// Sums of the first pass, one vector for each column, to the pairs of the second.
[[gnu::always_inline]] inline void turn(const __m256i sums[8], __m256i pairs[4]) {
    __m256i columns[4]; // two columns each: pairs 0 and 1 below, 2 and 3 above
#pragma GCC unroll 8
    for (int i = 0; i < 4; ++i) {
        const __m256i first = _mm256_srai_epi32(_mm256_slli_epi32(sums[2 * i], 3), 16);
        const __m256i second = _mm256_srai_epi32(_mm256_slli_epi32(sums[2 * i + 1], 3), 16);
        columns[i] = _mm256_packs_epi32(first, second);
    }
#pragma GCC unroll 8
    for (int odd = 0; odd < 2; ++odd) {
        const __m256i left = shuffle_words(columns[0], columns[1], odd);
        const __m256i right = shuffle_words(columns[2], columns[3], odd);
        pairs[odd] = _mm256_permute2x128_si256(left, right, 0x20);
        pairs[odd + 2] = _mm256_permute2x128_si256(left, right, 0x31);
    }
}

[[gnu::always_inline]] inline void store_rows(const __m256i sums[8], int16_t* samples,
                                              ptrdiff_t stride) {
#pragma GCC unroll 8
    for (int y = 0; y < 8; y += 2) {
        const __m256i both = _mm256_permute4x64_epi64(
            _mm256_packs_epi32(_mm256_srai_epi32(sums[y], 19), _mm256_srai_epi32(sums[y + 1], 19)),
            0xD8);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(samples + y * stride),
                         _mm256_castsi256_si128(both));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(samples + (y + 1) * stride),
                         _mm256_extracti128_si256(both, 1));
    }
}

void flat(int16_t mean, int16_t* samples, ptrdiff_t stride) {
    const auto row = static_cast<int16_t>(static_cast<uint32_t>(mean * c4) << 3 >> 16);
    const __m128i eight = _mm_set1_epi16(static_cast<int16_t>((row * c4 + (1 << 18)) >> 19));
#pragma GCC unroll 8
    for (int y = 0; y < 8; ++y)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(samples + y * stride), eight);
}

void inverse_dct(const int16_t* block, int32_t last, int16_t* samples, ptrdiff_t stride) {
    if (last == 0) {
        flat(block[0], samples, stride);
        return;
    }
    __m256i pairs[4], sums[8];
#pragma GCC unroll 8
    for (int i = 0; i < 4; ++i)
        pairs[i] = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(block) + i);
    transform(pairs, _mm256_setzero_si256(), sums);
    turn(sums, pairs);
    transform(pairs, _mm256_set1_epi32(1 << 18), sums);
    store_rows(sums, samples, stride);
}

// 115999 = 2 * 65536 - 15073, 91881 = 65536 + 26345, 46812 = 65536 - 18724: the high half of a
// 16 x 16-bit product is what remains after the shift, rounded down.
void chroma_terms(const int16_t* cb_row, const int16_t* cr_row, ChromaTerms terms, size_t count) {
    const __m256i middle = _mm256_set1_epi16(128);
    const __m256i green_factors = pair(-22525, 18724);
    for (size_t i = 0; i < count; i += 16) {
        const __m256i cb = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(cb_row + i));
        const __m256i cr = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(cr_row + i));
        const __m256i blue = _mm256_add_epi16(_mm256_add_epi16(cb, cb),
                                              _mm256_mulhi_epi16(cb, _mm256_set1_epi16(-15073)));
        const __m256i red = _mm256_add_epi16(cr, _mm256_mulhi_epi16(cr, _mm256_set1_epi16(26345)));
        const __m256i low = madd(_mm256_unpacklo_epi16(cb, cr), green_factors);
        const __m256i high = madd(_mm256_unpackhi_epi16(cb, cr), green_factors);
        const __m256i green = _mm256_sub_epi16(
            _mm256_packs_epi32(_mm256_srai_epi32(low, 16), _mm256_srai_epi32(high, 16)), cr);
        const auto store = [&](int16_t* row, __m256i values) {
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(row + i),
                                _mm256_add_epi16(values, middle));
        };
        store(terms.blue, blue);
        store(terms.green, green);
        store(terms.red, red);
    }
}

// 16 samples or terms of each of two blocks of 16 pixels: the first halves, the second halves.
struct Samples {
    __m256i first, second;
};

Samples load_each(const int16_t* from) {
    const auto half = [&](int at) {
        const auto* vectors = reinterpret_cast<const __m128i*>(from) + at;
        return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(vectors)),
                                       _mm_loadu_si128(vectors + 2), 1);
    };
    return {half(0), half(1)};
}

Samples load_wide(const int16_t* from) {
    const __m256i terms = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
    return {_mm256_unpacklo_epi16(terms, terms), _mm256_unpackhi_epi16(terms, terms)};
}

__m256i channel(const Samples& y, const Samples& terms) {
    return _mm256_packus_epi16(_mm256_add_epi16(y.first, terms.first),
                               _mm256_add_epi16(y.second, terms.second));
}

// For each part of the 48 bytes that 16 pixels take, where those of one channel come from.
struct Places {
    alignas(32) int8_t from[3][3][32];
};

constexpr Places places = [] {
    Places table = {};
    for (int part = 0; part < 3; ++part) {
        for (int channel = 0; channel < 3; ++channel) {
            for (int i = 0; i < 32; ++i) {
                const int byte = 16 * part + i % 16;
                table.from[part][channel][i] =
                    byte % 3 == channel ? static_cast<int8_t>(byte / 3) : int8_t{-1};
            }
        }
    }
    return table;
}();

inline __m256i placed(__m256i values, int part, int channel) {
    return _mm256_shuffle_epi8(values,
                               *reinterpret_cast<const __m256i*>(places.from[part][channel]));
}

// 32 pixels of three channels, 16 in each half of the vectors.
[[gnu::always_inline]] inline void store_pixels(__m256i blue, __m256i green, __m256i red,
                                                uint8_t* bgr) {
#pragma GCC unroll 3
    for (int part = 0; part < 3; ++part) {
        const __m256i bytes = _mm256_or_si256(
            _mm256_or_si256(placed(blue, part, 0), placed(green, part, 1)), placed(red, part, 2));
        auto* to = reinterpret_cast<__m128i*>(bgr) + part;
        _mm_storeu_si128(to, _mm256_castsi256_si128(bytes));
        _mm_storeu_si128(to + 3, _mm256_extracti128_si256(bytes, 1));
    }
}

constexpr size_t step = 32;

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
    const Samples middle = {_mm256_set1_epi16(128), _mm256_set1_epi16(128)};
    for_steps(bgr, count, [&](size_t i, uint8_t* to) {
        const __m256i level = channel(load_each(y + i), middle);
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

} // namespace kirvo::avx2
