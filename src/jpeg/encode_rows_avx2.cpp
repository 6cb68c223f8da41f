#include "jpeg/encode_rows.hpp"

#include "jpeg/fdct_simd.hpp"
#include "jpeg/tables.hpp"

#include <immintrin.h>

namespace kirvo::avx2 {

namespace {

__m128i load16(const void* from) { return _mm_loadu_si128(static_cast<const __m128i*>(from)); }
__m256i load(const void* from) { return _mm256_loadu_si256(static_cast<const __m256i*>(from)); }
void store(void* to, __m256i value) { _mm256_storeu_si256(static_cast<__m256i*>(to), value); }

struct Vector {
    using R = __m256i;

    static R widen(const int8_t* samples) { return _mm256_cvtepi8_epi16(load16(samples)); }
    static void store(int16_t* to, R x) { avx2::store(to, x); }
    static R load(const uint16_t* from) { return avx2::load(from); }
    static R set16(int16_t x) { return _mm256_set1_epi16(x); }
    static R set_pair(int16_t first, int16_t second) {
        return _mm256_set1_epi32(static_cast<int>(static_cast<uint16_t>(first) |
                                                  static_cast<uint32_t>(second) << 16));
    }
    static R low16(R a, R b) { return _mm256_unpacklo_epi16(a, b); }
    static R high16(R a, R b) { return _mm256_unpackhi_epi16(a, b); }
    static R low32(R a, R b) { return _mm256_unpacklo_epi32(a, b); }
    static R high32(R a, R b) { return _mm256_unpackhi_epi32(a, b); }
    static R low64(R a, R b) { return _mm256_unpacklo_epi64(a, b); }
    static R high64(R a, R b) { return _mm256_unpackhi_epi64(a, b); }
    static R add16(R a, R b) { return _mm256_add_epi16(a, b); }
    static R sub16(R a, R b) { return _mm256_sub_epi16(a, b); }
    static R add32(R a, R b) { return _mm256_add_epi32(a, b); }
    static R madd(R a, R b) { return _mm256_madd_epi16(a, b); }
    static R mul_high(R a, R b) { return _mm256_mulhi_epi16(a, b); }
    static R mul_high_unsigned(R a, R b) { return _mm256_mulhi_epu16(a, b); }
    static R pack32(R a, R b) { return _mm256_packs_epi32(a, b); }
    template <int n>
    static R shift_right32(R a) {
        return _mm256_srai_epi32(a, n);
    }
    template <int n>
    static R shift_right16(R a) {
        return _mm256_srai_epi16(a, n);
    }
    template <int n>
    static R shift_left16(R a) {
        return _mm256_slli_epi16(a, n);
    }
    static R magnitude(R a) { return _mm256_abs_epi16(a); }
    static R with_sign(R magnitude, R a) { return _mm256_sign_epi16(magnitude, a); }
};

// 24 bytes to eight pixels of four bytes, the fourth 0. The upper half is loaded from 4 bytes before
// its first pixel.
__m256i load_pixels(const uint8_t* bgr) {
    const __m256i spread =
        _mm256_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1, //
                         4, 5, 6, -1, 7, 8, 9, -1, 10, 11, 12, -1, 13, 14, 15, -1);
    const __m256i bytes =
        _mm256_inserti128_si256(_mm256_castsi128_si256(load16(bgr)), load16(bgr + 8), 1);
    return _mm256_shuffle_epi8(bytes, spread);
}

// The four bytes of each pixel summed with weights; of 16 pixels in two vectors, 16 bits each. Y
// takes its weights as unsigned numbers and bytes less 128, whose sum lacks 128 * 256, so that
// + 128 and the shift yield Y; the fourth byte, 1 after the change of signs, brings the 128 in. The
// chroma weights are negated, since 128 would not do as a signed byte.
struct Pixels {
    __m256i part[4]; // of 8 pixels each

    explicit Pixels(const uint8_t* bgr) {
        for (int i = 0; i < 4; ++i)
            part[i] = load_pixels(bgr + 24 * i);
    }
    void store_y(int8_t* to) const {
        const __m256i weights = _mm256_set1_epi32(128 << 24 | 77 << 16 | 150 << 8 | 29);
        const __m256i signs = _mm256_set1_epi32(0x01808080);
        __m256i sums[4];
        for (int i = 0; i < 4; ++i)
            sums[i] = _mm256_madd_epi16(
                _mm256_maddubs_epi16(weights, _mm256_xor_si256(part[i], signs)),
                _mm256_set1_epi16(1));
        store_high_bytes(to, sums, _mm256_setzero_si256());
    }
    void store_chroma(int8_t* to, int negated_weights) const {
        const __m256i weights = _mm256_set1_epi32(negated_weights);
        __m256i sums[4];
        for (int i = 0; i < 4; ++i)
            sums[i] = _mm256_madd_epi16(_mm256_maddubs_epi16(part[i], weights),
                                        _mm256_set1_epi16(-1));
        store_high_bytes(to, sums, _mm256_set1_epi16(127));
    }

  private:
    // The packs work within lanes: groups of four pixels come out as 0 2 4 6 1 3 5 7.
    static void store_high_bytes(int8_t* to, const __m256i (&sums)[4], __m256i bias) {
        const auto high_bytes = [&](int i) {
            const __m256i words = _mm256_packs_epi32(sums[i], sums[i + 1]);
            return _mm256_srai_epi16(_mm256_add_epi16(words, bias), 8);
        };
        const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
        store(to, _mm256_permutevar8x32_epi32(_mm256_packs_epi16(high_bytes(0), high_bytes(2)),
                                              order));
    }
};

constexpr int cb_weights = 43 << 16 | 85 << 8 | 0x80;
constexpr int cr_weights = 0x80 << 16 | 107 << 8 | 21;

void convert(const uint8_t* bgr, size_t count, int8_t* y, int8_t* cb, int8_t* cr) {
    size_t i = 0;
    for (; i + 32 <= count; i += 32) {
        const Pixels pixels(bgr + 3 * i);
        pixels.store_y(y + i);
        pixels.store_chroma(cb + i, cb_weights);
        pixels.store_chroma(cr + i, cr_weights);
    }
    encode_rows_scalar.convert(bgr + 3 * i, count - i, y + i, cb + i, cr + i);
}

__m256i pair_sums(const int8_t* row) {
    return _mm256_maddubs_epi16(_mm256_set1_epi8(1), load(row));
}

void store_packed(int8_t* to, __m256i low, __m256i high) {
    store(to, _mm256_permute4x64_epi64(_mm256_packs_epi16(low, high), 0xD8));
}

void halve_across(const int8_t* row, size_t count, int8_t* half) {
    const auto mean = [&](size_t i) {
        return _mm256_srai_epi16(_mm256_add_epi16(pair_sums(row + i), _mm256_set1_epi16(1)), 1);
    };
    for (size_t i = 0; i < count; i += 32)
        store_packed(half + i, mean(2 * i), mean(2 * i + 32));
}

void halve_both(const int8_t* upper, const int8_t* lower, size_t count, int8_t* half) {
    const auto mean = [&](size_t i) {
        const __m256i sums = _mm256_add_epi16(pair_sums(upper + i), pair_sums(lower + i));
        return _mm256_srai_epi16(_mm256_add_epi16(sums, _mm256_set1_epi16(2)), 2);
    };
    for (size_t i = 0; i < count; i += 32)
        store_packed(half + i, mean(2 * i), mean(2 * i + 32));
}

// Sixteen zigzag positions from the vectors that hold natural rows 2i and 2i + 1: which byte of
// vector i stands at each of them, or -1.
struct ScanStep {
    alignas(16) int8_t from[4][16];
};
struct ScanSteps {
    ScanStep step[4];
};
constexpr ScanSteps scan_steps = [] {
    ScanSteps steps = {};
    for (int k = 0; k < 64; ++k) {
        for (int i = 0; i < 4; ++i)
            steps.step[k / 16].from[i][k % 16] =
                static_cast<int8_t>(zigzag[k] / 16 == i ? zigzag[k] % 16 : -1);
    }
    return steps;
}();

template <int... parts>
__m256i gather(const __m256i (&natural)[4], const ScanStep& step) {
    __m256i all = _mm256_setzero_si256();
    ((all = _mm256_or_si256(
          all, _mm256_shuffle_epi8(natural[parts],
                                   _mm256_broadcastsi128_si256(load16(step.from[parts]))))),
     ...);
    return all;
}

// The levels of two blocks in zigzag order, clamped to bytes, and which are not zero.
void scan(const __m256i (&r)[8], BlockGroup& group, int block) {
    __m256i natural[4];
    for (int i = 0; i < 4; ++i)
        natural[i] = _mm256_packs_epi16(r[2 * i], r[2 * i + 1]);
    const __m256i steps[4] = {gather<0, 1, 2>(natural, scan_steps.step[0]),
                              gather<0, 1, 2, 3>(natural, scan_steps.step[1]),
                              gather<0, 1, 2, 3>(natural, scan_steps.step[2]),
                              gather<1, 2, 3>(natural, scan_steps.step[3])};
    uint64_t zeros[2] = {};
    for (int half = 0; half < 2; ++half) {
        const __m256i first = _mm256_permute2x128_si256(steps[2 * half], steps[2 * half + 1], 0x20);
        const __m256i second =
            _mm256_permute2x128_si256(steps[2 * half], steps[2 * half + 1], 0x31);
        const auto take = [&](int i, __m256i bytes) {
            store(group.small[block + i] + 32 * half,
                  _mm256_add_epi8(bytes, _mm256_set1_epi8(small_levels)));
            const auto mask = static_cast<uint32_t>(
                _mm256_movemask_epi8(_mm256_cmpeq_epi8(bytes, _mm256_setzero_si256())));
            zeros[i] |= static_cast<uint64_t>(mask) << (32 * half);
        };
        take(0, first);
        take(1, second);
    }
    group.nonzero[block] = ~zeros[0];
    group.nonzero[block + 1] = ~zeros[1];
}

void code_groups(const int8_t* samples, ptrdiff_t stride, size_t groups,
                 const Quantiser& quantiser, BlockGroup* out) {
    for (size_t group = 0; group < groups; ++group, samples += 8 * group_blocks) {
        for (int block = 0; block < static_cast<int>(group_blocks); block += 2) {
            __m256i r[8];
            SimdTransform<Vector>::code(samples, stride, quantiser, out[group], block, r);
            scan(r, out[group], block);
        }
    }
}

} // namespace

const EncodeRows encode_rows = {convert, halve_across, halve_both, code_groups};

} // namespace kirvo::avx2
