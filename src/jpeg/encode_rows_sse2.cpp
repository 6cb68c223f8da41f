#include "jpeg/encode_rows.hpp"

#include "jpeg/fdct_simd.hpp"
#include "jpeg/tables.hpp"

#include <emmintrin.h>

namespace kirvo::sse2 {

namespace {

__m128i load(const void* from) { return _mm_loadu_si128(static_cast<const __m128i*>(from)); }
void store(void* to, __m128i value) { _mm_storeu_si128(static_cast<__m128i*>(to), value); }

struct Vector {
    using R = __m128i;

    static R widen(const int8_t* samples) {
        const R bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(samples));
        return _mm_srai_epi16(_mm_unpacklo_epi8(bytes, bytes), 8);
    }
    static void store(int16_t* to, R x) { sse2::store(to, x); }
    static R load(const uint16_t* from) { return sse2::load(from); }
    static R set16(int16_t x) { return _mm_set1_epi16(x); }
    static R set_pair(int16_t first, int16_t second) {
        return _mm_setr_epi16(first, second, first, second, first, second, first, second);
    }
    static R low16(R a, R b) { return _mm_unpacklo_epi16(a, b); }
    static R high16(R a, R b) { return _mm_unpackhi_epi16(a, b); }
    static R low32(R a, R b) { return _mm_unpacklo_epi32(a, b); }
    static R high32(R a, R b) { return _mm_unpackhi_epi32(a, b); }
    static R low64(R a, R b) { return _mm_unpacklo_epi64(a, b); }
    static R high64(R a, R b) { return _mm_unpackhi_epi64(a, b); }
    static R add16(R a, R b) { return _mm_add_epi16(a, b); }
    static R sub16(R a, R b) { return _mm_sub_epi16(a, b); }
    static R add32(R a, R b) { return _mm_add_epi32(a, b); }
    static R madd(R a, R b) { return _mm_madd_epi16(a, b); }
    static R mul_high(R a, R b) { return _mm_mulhi_epi16(a, b); }
    static R mul_high_unsigned(R a, R b) { return _mm_mulhi_epu16(a, b); }
    static R pack32(R a, R b) { return _mm_packs_epi32(a, b); }
    template <int n>
    static R shift_right32(R a) {
        return _mm_srai_epi32(a, n);
    }
    template <int n>
    static R shift_right16(R a) {
        return _mm_srai_epi16(a, n);
    }
    template <int n>
    static R shift_left16(R a) {
        return _mm_slli_epi16(a, n);
    }
    static R magnitude(R a) { return _mm_max_epi16(a, _mm_sub_epi16(_mm_setzero_si128(), a)); }
    static R with_sign(R magnitude, R a) {
        const R sign = _mm_srai_epi16(a, 15);
        return _mm_sub_epi16(_mm_xor_si128(magnitude, sign), sign);
    }
};

// Sixteen pixels to a vector of each channel. Each step takes halves that are as far apart as the
// same channel's next pixels will be, until only equal channels are left together.
struct Channels {
    __m128i blue, green, red;

    explicit Channels(const uint8_t* bgr) : blue(load(bgr)), green(load(bgr + 16)), red(load(bgr + 32)) {
        for (int step = 0; step < 4; ++step) {
            const __m128i a = _mm_unpacklo_epi8(blue, _mm_unpackhi_epi64(green, green));
            const __m128i b = _mm_unpacklo_epi8(_mm_unpackhi_epi64(blue, blue), red);
            const __m128i c = _mm_unpacklo_epi8(green, _mm_unpackhi_epi64(red, red));
            blue = a;
            green = b;
            red = c;
        }
    }
};

struct Weights {
    __m128i blue, green, red, bias;

    Weights(int16_t b, int16_t g, int16_t r, int16_t bias_)
        : blue(_mm_set1_epi16(b)), green(_mm_set1_epi16(g)), red(_mm_set1_epi16(r)),
          bias(_mm_set1_epi16(bias_)) {}
    __m128i sum(__m128i b, __m128i g, __m128i r) const {
        const __m128i all = _mm_add_epi16(_mm_mullo_epi16(b, blue), _mm_mullo_epi16(g, green));
        return _mm_srai_epi16(
            _mm_add_epi16(all, _mm_add_epi16(_mm_mullo_epi16(r, red), bias)), 8);
    }
    void store(int8_t* to, const Channels& c) const {
        const __m128i zero = _mm_setzero_si128();
        const __m128i low = sum(_mm_unpacklo_epi8(c.blue, zero), _mm_unpacklo_epi8(c.green, zero),
                                _mm_unpacklo_epi8(c.red, zero));
        const __m128i high = sum(_mm_unpackhi_epi8(c.blue, zero), _mm_unpackhi_epi8(c.green, zero),
                                 _mm_unpackhi_epi8(c.red, zero));
        sse2::store(to, _mm_packs_epi16(low, high));
    }
};

// Sums wrap in 16 bits on the way, their ends fit.
void convert(const uint8_t* bgr, size_t count, int8_t* y, int8_t* cb, int8_t* cr) {
    const Weights y_weights(29, 150, 77, -32640), cb_weights(128, -85, -43, 127),
        cr_weights(-21, -107, 128, 127);
    size_t i = 0;
    for (; i + 16 <= count; i += 16) {
        const Channels channels(bgr + 3 * i);
        y_weights.store(y + i, channels);
        cb_weights.store(cb + i, channels);
        cr_weights.store(cr + i, channels);
    }
    encode_rows_scalar.convert(bgr + 3 * i, count - i, y + i, cb + i, cr + i);
}

__m128i pair_sums(const int8_t* row) {
    const __m128i bytes = load(row);
    return _mm_add_epi16(_mm_srai_epi16(_mm_slli_epi16(bytes, 8), 8), _mm_srai_epi16(bytes, 8));
}

void halve_across(const int8_t* row, size_t count, int8_t* half) {
    const auto mean = [&](size_t i) {
        return _mm_srai_epi16(_mm_add_epi16(pair_sums(row + i), _mm_set1_epi16(1)), 1);
    };
    for (size_t i = 0; i < count; i += 16)
        store(half + i, _mm_packs_epi16(mean(2 * i), mean(2 * i + 16)));
}

void halve_both(const int8_t* upper, const int8_t* lower, size_t count, int8_t* half) {
    const auto mean = [&](size_t i) {
        const __m128i sums = _mm_add_epi16(pair_sums(upper + i), pair_sums(lower + i));
        return _mm_srai_epi16(_mm_add_epi16(sums, _mm_set1_epi16(2)), 2);
    };
    for (size_t i = 0; i < count; i += 16)
        store(half + i, _mm_packs_epi16(mean(2 * i), mean(2 * i + 16)));
}

// Zigzag position of each natural index.
constexpr std::array<uint8_t, 64> position_of = [] {
    std::array<uint8_t, 64> positions = {};
    for (uint8_t k = 0; k < 64; ++k)
        positions[zigzag[k]] = k;
    return positions;
}();

// The levels clamped to bytes, in zigzag order. Only those that are not zero are put in their
// places.
void scan(const __m128i (&r)[8], uint8_t* small, uint64_t& nonzero) {
    int8_t natural[64];
    uint64_t left = 0, mask = 0;
    for (int i = 0; i < 4; ++i) {
        const __m128i rows = _mm_packs_epi16(r[2 * i], r[2 * i + 1]);
        store(natural + 16 * i, rows);
        const auto zeros = static_cast<uint32_t>(
            _mm_movemask_epi8(_mm_cmpeq_epi8(rows, _mm_setzero_si128())));
        left |= static_cast<uint64_t>(zeros ^ 0xFFFF) << (16 * i);
    }
    for (; left != 0; left &= left - 1) {
        const auto n = static_cast<size_t>(__builtin_ctzll(left));
        small[position_of[n]] = static_cast<uint8_t>(natural[n] + small_levels);
        mask |= uint64_t{1} << position_of[n];
    }
    nonzero = mask;
}

void code_groups(const int8_t* samples, ptrdiff_t stride, size_t groups,
                 const Quantiser& quantiser, BlockGroup* out) {
    for (size_t group = 0; group < groups; ++group, samples += 8 * group_blocks) {
        for (int block = 0; block < static_cast<int>(group_blocks); ++block) {
            __m128i r[8];
            SimdTransform<Vector>::code(samples, stride, quantiser, out[group], block, r);
            scan(r, out[group].small[block], out[group].nonzero[block]);
        }
    }
}

} // namespace

const EncodeRows encode_rows = {convert, halve_across, halve_both, code_groups};

} // namespace kirvo::sse2
