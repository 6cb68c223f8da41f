#include "jpeg/encode_rows.hpp"

#include "jpeg/fdct_simd.hpp"
#include "jpeg/tables.hpp"

#include <immintrin.h>

namespace kirvo::avx512 {

namespace {

__m512i load(const void* from) { return _mm512_loadu_si512(from); }
void store(void* to, __m512i value) { _mm512_storeu_si512(to, value); }

struct Vector {
    using R = __m512i;

    static R widen(const int8_t* samples) {
        return _mm512_cvtepi8_epi16(
            _mm256_loadu_si256(reinterpret_cast<const __m256i*>(samples)));
    }
    static void store(int16_t* to, R x) { avx512::store(to, x); }
    static R load(const uint16_t* from) { return avx512::load(from); }
    static R set16(int16_t x) { return _mm512_set1_epi16(x); }
    static R set_pair(int16_t first, int16_t second) {
        return _mm512_set1_epi32(static_cast<int>(static_cast<uint16_t>(first) |
                                                  static_cast<uint32_t>(second) << 16));
    }
    static R low16(R a, R b) { return _mm512_unpacklo_epi16(a, b); }
    static R high16(R a, R b) { return _mm512_unpackhi_epi16(a, b); }
    static R low32(R a, R b) { return _mm512_unpacklo_epi32(a, b); }
    static R high32(R a, R b) { return _mm512_unpackhi_epi32(a, b); }
    static R low64(R a, R b) { return _mm512_unpacklo_epi64(a, b); }
    static R high64(R a, R b) { return _mm512_unpackhi_epi64(a, b); }
    static R add16(R a, R b) { return _mm512_add_epi16(a, b); }
    static R sub16(R a, R b) { return _mm512_sub_epi16(a, b); }
    static R add32(R a, R b) { return _mm512_add_epi32(a, b); }
    static R madd(R a, R b) { return _mm512_madd_epi16(a, b); }
    static R mul_high(R a, R b) { return _mm512_mulhi_epi16(a, b); }
    static R mul_high_unsigned(R a, R b) { return _mm512_mulhi_epu16(a, b); }
    static R pack32(R a, R b) { return _mm512_packs_epi32(a, b); }
    template <int n>
    static R shift_right32(R a) {
        return _mm512_srai_epi32(a, n);
    }
    template <int n>
    static R shift_right16(R a) {
        return _mm512_srai_epi16(a, n);
    }
    template <int n>
    static R shift_left16(R a) {
        return _mm512_slli_epi16(a, n);
    }
    static R magnitude(R a) { return _mm512_abs_epi16(a); }
    static R with_sign(R magnitude, R a) {
        return _mm512_mask_sub_epi16(magnitude, _mm512_movepi16_mask(a), _mm512_setzero_si512(),
                                     magnitude);
    }
};

// Two bytes of each of 16 pixels, or of which the second is left 0, into the halves of a vector.
struct Spread {
    alignas(64) uint8_t from[64];

    constexpr explicit Spread(int first_byte) : from{} {
        for (int i = 0; i < 64; ++i)
            from[i] = static_cast<uint8_t>(i % 32 / 2 * 3 + first_byte + i % 2);
    }
};
constexpr Spread blue_and_green(0), red(2);

constexpr int pair_of(int first, int second) { return (second & 0xFF) << 8 | (first & 0xFF); }

// 32 pixels as pairs of bytes: blue and green, red and 0.
struct Pixels {
    __m512i blue_green, red_zero;

    Pixels(__m512i first16, __m512i next16) {
        const __mmask64 even = 0x5555555555555555u;
        const __mmask64 low_half = 0x00000000FFFFFFFFu;
        const __m512i bg = load(blue_and_green.from), r = load(red.from);
        blue_green = _mm512_mask_permutexvar_epi8(_mm512_permutexvar_epi8(bg, next16), low_half,
                                                  bg, first16);
        red_zero = _mm512_mask_permutexvar_epi8(_mm512_maskz_permutexvar_epi8(even, r, next16),
                                                even & low_half, r, first16);
    }

    // 256 * Y and less than 256 more. The weights of Y are unsigned numbers and its bytes are less
    // 128, so that the sum lacks 128 * 256, which is the level shift; the bytes beside red become 1
    // and bring in the 128 that rounds.
    __m512i y() const {
        const __m512i blue_green_weights = _mm512_set1_epi16(static_cast<short>(pair_of(29, 150)));
        const __m512i red_one_weights = _mm512_set1_epi16(static_cast<short>(pair_of(77, 128)));
        const __m512i level = _mm512_set1_epi8(static_cast<char>(0x80));
        const __m512i level_and_one = _mm512_set1_epi16(0x0180);
        return _mm512_add_epi16(
            _mm512_maddubs_epi16(blue_green_weights, _mm512_xor_si512(blue_green, level)),
            _mm512_maddubs_epi16(red_one_weights, _mm512_xor_si512(red_zero, level_and_one)));
    }
    // 256 * Cb or Cr and less than 256 more. The weights are negated, since 128 would not do as a
    // signed byte.
    __m512i chroma(int blue, int green, int red) const {
        const __m512i blue_green_weights =
            _mm512_set1_epi16(static_cast<short>(pair_of(-blue, -green)));
        const __m512i red_weights = _mm512_set1_epi16(static_cast<short>(pair_of(-red, 0)));
        return _mm512_sub_epi16(
            _mm512_set1_epi16(127),
            _mm512_add_epi16(_mm512_maddubs_epi16(blue_green, blue_green_weights),
                             _mm512_maddubs_epi16(red_zero, red_weights)));
    }
};

// The high bytes of 64 words.
struct Unzip {
    alignas(64) uint8_t from[64];

    constexpr Unzip() : from{} {
        for (int i = 0; i < 64; ++i)
            from[i] = static_cast<uint8_t>(i < 32 ? 2 * i : 2 * (i - 32) + 1);
    }
};
constexpr Unzip unzip;

void store_high_bytes(int8_t* to, __m512i first, __m512i second) {
    const __m512i zipped =
        _mm512_mask_blend_epi8(0xAAAAAAAAAAAAAAAAu, _mm512_srli_epi16(first, 8), second);
    store(to, _mm512_permutexvar_epi8(load(unzip.from), zipped));
}

void convert(const uint8_t* bgr, size_t count, int8_t* y, int8_t* cb, int8_t* cr) {
    const __mmask64 last_48 = 0x0000FFFFFFFFFFFFu;
    size_t i = 0;
    for (; i + 64 <= count; i += 64) {
        const uint8_t* from = bgr + 3 * i;
        const Pixels first(load(from), load(from + 48));
        const Pixels second(load(from + 96), _mm512_maskz_loadu_epi8(last_48, from + 144));
        store_high_bytes(y + i, first.y(), second.y());
        store_high_bytes(cb + i, first.chroma(128, -85, -43), second.chroma(128, -85, -43));
        store_high_bytes(cr + i, first.chroma(-21, -107, 128), second.chroma(-21, -107, 128));
    }
    avx2::encode_rows.convert(bgr + 3 * i, count - i, y + i, cb + i, cr + i);
}

__m512i pair_sums(const int8_t* row) {
    return _mm512_maddubs_epi16(_mm512_set1_epi8(1), load(row));
}

void store_narrow(int8_t* to, __m512i words) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), _mm512_cvtepi16_epi8(words));
}

void halve_across(const int8_t* row, size_t count, int8_t* half) {
    for (size_t i = 0; i < count; i += 32) {
        const __m512i sums = pair_sums(row + 2 * i);
        store_narrow(half + i, _mm512_srai_epi16(_mm512_add_epi16(sums, _mm512_set1_epi16(1)), 1));
    }
}

void halve_both(const int8_t* upper, const int8_t* lower, size_t count, int8_t* half) {
    for (size_t i = 0; i < count; i += 32) {
        const __m512i sums = _mm512_add_epi16(pair_sums(upper + 2 * i), pair_sums(lower + 2 * i));
        store_narrow(half + i, _mm512_srai_epi16(_mm512_add_epi16(sums, _mm512_set1_epi16(2)), 2));
    }
}

// The levels of four blocks in zigzag order, clamped to bytes, and which are not zero.
void scan(const __m512i (&r)[8], BlockGroup& group) {
    // Lane b of pair i holds natural rows 2i and 2i + 1 of block b.
    __m512i pair[4];
    for (int i = 0; i < 4; ++i)
        pair[i] = _mm512_packs_epi16(r[2 * i], r[2 * i + 1]);
    const __m512i low01 = _mm512_shuffle_i32x4(pair[0], pair[1], 0x44);
    const __m512i low23 = _mm512_shuffle_i32x4(pair[2], pair[3], 0x44);
    const __m512i high01 = _mm512_shuffle_i32x4(pair[0], pair[1], 0xEE);
    const __m512i high23 = _mm512_shuffle_i32x4(pair[2], pair[3], 0xEE);
    const __m512i natural[4] = {_mm512_shuffle_i32x4(low01, low23, 0x88),
                                _mm512_shuffle_i32x4(low01, low23, 0xDD),
                                _mm512_shuffle_i32x4(high01, high23, 0x88),
                                _mm512_shuffle_i32x4(high01, high23, 0xDD)};
    const __m512i order = load(&zigzag);
    for (int block = 0; block < 4; ++block) {
        const __m512i levels = _mm512_permutexvar_epi8(order, natural[block]);
        _mm512_store_si512(group.small[block],
                           _mm512_add_epi8(levels, _mm512_set1_epi8(small_levels)));
        group.nonzero[block] = _mm512_test_epi8_mask(levels, levels);
    }
}

void code_groups(const int8_t* samples, ptrdiff_t stride, size_t groups,
                 const Quantiser& quantiser, BlockGroup* out) {
    for (size_t group = 0; group < groups; ++group, samples += 8 * group_blocks) {
        __m512i r[8];
        SimdTransform<Vector>::code(samples, stride, quantiser, out[group], 0, r);
        scan(r, out[group]);
    }
}

} // namespace

const EncodeRows encode_rows = {convert, halve_across, halve_both, code_groups};

} // namespace kirvo::avx512
