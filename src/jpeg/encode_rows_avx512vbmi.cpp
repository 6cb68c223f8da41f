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
    static R repeat(const uint16_t* eight) {
        return _mm512_broadcast_i32x4(
            _mm_load_si128(reinterpret_cast<const __m128i*>(eight)));
    }
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

// The bytes of 16 pixels, at some place of a vector, to pixels of four bytes. The fourth may be
// anything: its weights are 0, or it is replaced.
struct Spread {
    alignas(64) uint8_t from[64];

    constexpr explicit Spread(int first) : from{} {
        for (int i = 0; i < 64; ++i)
            from[i] = static_cast<uint8_t>((first + i / 4 * 3 + i % 4) % 64);
    }
};
constexpr Spread spread_from_0(0), spread_from_16(16);

// The four bytes of each pixel summed with weights; of 64 pixels in four vectors, 16 bits each. Y
// takes its weights as unsigned numbers and bytes less 128, whose sum lacks 128 * 256, so that
// + 128 and the shift yield Y; the fourth byte, set to 1, brings the 128 in. The chroma weights are
// negated, since 128 would not do as a signed byte.
struct Pixels {
    __m512i part[4]; // of 16 pixels each

    explicit Pixels(const uint8_t* bgr) {
        const auto spread = [](const Spread& bytes, const uint8_t* from) {
            return _mm512_permutexvar_epi8(load(bytes.from), load(from));
        };
        part[0] = spread(spread_from_0, bgr);
        part[1] = spread(spread_from_0, bgr + 48);
        part[2] = spread(spread_from_0, bgr + 96);
        part[3] = spread(spread_from_16, bgr + 128);
    }
    void store_y(int8_t* to) const {
        const __m512i weights =
            _mm512_set1_epi32(static_cast<int>(128u << 24 | 77 << 16 | 150 << 8 | 29));
        const __m512i signs = _mm512_set1_epi32(0x01808080);
        const __m512i colour = _mm512_set1_epi32(0x00FFFFFF);
        __m512i sums[4];
        for (int i = 0; i < 4; ++i) {
            // (part & colour) ^ signs
            const __m512i bytes = _mm512_ternarylogic_epi32(part[i], colour, signs, 0x6A);
            sums[i] = _mm512_madd_epi16(_mm512_maddubs_epi16(weights, bytes),
                                        _mm512_set1_epi16(1));
        }
        store_high_bytes(to, sums, _mm512_setzero_si512());
    }
    void store_chroma(int8_t* to, int negated_weights) const {
        const __m512i weights = _mm512_set1_epi32(negated_weights);
        __m512i sums[4];
        for (int i = 0; i < 4; ++i)
            sums[i] = _mm512_madd_epi16(_mm512_maddubs_epi16(part[i], weights),
                                        _mm512_set1_epi16(-1));
        store_high_bytes(to, sums, _mm512_set1_epi16(127));
    }

  private:
    // The packs work within lanes, on groups of four pixels: each lane holds one group of every
    // vector.
    static void store_high_bytes(int8_t* to, const __m512i (&sums)[4], __m512i bias) {
        const auto high_bytes = [&](int i) {
            const __m512i words = _mm512_packs_epi32(sums[i], sums[i + 1]);
            return _mm512_srai_epi16(_mm512_add_epi16(words, bias), 8);
        };
        const __m512i order =
            _mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
        store(to, _mm512_permutexvar_epi32(order,
                                           _mm512_packs_epi16(high_bytes(0), high_bytes(2))));
    }
};

constexpr int cb_weights = 43 << 16 | 85 << 8 | 0x80;
constexpr int cr_weights = 0x80 << 16 | 107 << 8 | 21;

void convert(const uint8_t* bgr, size_t count, int8_t* y, int8_t* cb, int8_t* cr) {
    size_t i = 0;
    for (; i + 64 <= count; i += 64) {
        const Pixels pixels(bgr + 3 * i);
        pixels.store_y(y + i);
        pixels.store_chroma(cb + i, cb_weights);
        pixels.store_chroma(cr + i, cr_weights);
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
