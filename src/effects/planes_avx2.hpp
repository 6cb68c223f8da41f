// Pixels as planes of bytes, and what the kernels do with vectors: AVX2, 32 pixels.
#pragma once

#include <cstddef>
#include <cstdint>
#include <immintrin.h>

namespace kirvo::avx2 {

struct Planes {
    using Vector = __m256i;
    static constexpr size_t pixels = 32;
    Vector blue, green, red;

    // Each half holds 16 pixels, 48 bytes in three vectors. A channel stands at every third byte,
    // from another place in each vector, so that the three parts lie over each other without
    // collision; one shuffle puts them in order.
    static Planes load(const uint8_t* bgr) {
        const Vector v0 = load_halves(bgr, bgr + 48), v1 = load_halves(bgr + 16, bgr + 64),
                     v2 = load_halves(bgr + 32, bgr + 80);
        return {_mm256_shuffle_epi8(every_third(v0, v2, v1),
                                    lanes(0, 3, 6, 9, 12, 15, 2, 5, 8, 11, 14, 1, 4, 7, 10, 13)),
                _mm256_shuffle_epi8(every_third(v1, v0, v2),
                                    lanes(1, 4, 7, 10, 13, 0, 3, 6, 9, 12, 15, 2, 5, 8, 11, 14)),
                _mm256_shuffle_epi8(every_third(v2, v1, v0),
                                    lanes(2, 5, 8, 11, 14, 1, 4, 7, 10, 13, 0, 3, 6, 9, 12, 15))};
    }
    void store(uint8_t* bgr) const {
        const Vector b =
            _mm256_shuffle_epi8(blue, lanes(0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15, 10, 5));
        const Vector g =
            _mm256_shuffle_epi8(green, lanes(5, 0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15, 10));
        const Vector r =
            _mm256_shuffle_epi8(red, lanes(10, 5, 0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15));
        store_halves(bgr, bgr + 48, every_third(b, g, r));
        store_halves(bgr + 16, bgr + 64, every_third(g, r, b));
        store_halves(bgr + 32, bgr + 80, every_third(r, b, g));
    }

    static Vector load_bytes(const uint8_t* from) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
    }
    static void store_bytes(uint8_t* to, Vector v) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), v);
    }

    static Vector all8(int32_t value) { return _mm256_set1_epi8(static_cast<char>(value)); }
    static Vector max8(Vector a, Vector b) { return _mm256_max_epu8(a, b); }
    static Vector min8(Vector a, Vector b) { return _mm256_min_epu8(a, b); }
    static Vector add8(Vector a, Vector b) { return _mm256_add_epi8(a, b); }
    static Vector sub8(Vector a, Vector b) { return _mm256_sub_epi8(a, b); }
    static Vector sub8_to_0(Vector a, Vector b) { return _mm256_subs_epu8(a, b); }
    static Vector equal8(Vector a, Vector b) { return _mm256_cmpeq_epi8(a, b); }
    static Vector select(Vector mask, Vector yes, Vector no) {
        return _mm256_blendv_epi8(no, yes, mask);
    }
    static Vector both(Vector a, Vector b) { return _mm256_and_si256(a, b); }
    static Vector either(Vector a, Vector b) { return _mm256_or_si256(a, b); }
    static Vector but_not(Vector a, Vector b) { return _mm256_andnot_si256(b, a); }
    static Vector differing(Vector a, Vector b) { return _mm256_xor_si256(a, b); }

    static Vector all16(int32_t value) { return _mm256_set1_epi16(static_cast<short>(value)); }
    static Vector low16(Vector bytes) {
        return _mm256_unpacklo_epi8(bytes, _mm256_setzero_si256());
    }
    static Vector high16(Vector bytes) {
        return _mm256_unpackhi_epi8(bytes, _mm256_setzero_si256());
    }
    static Vector low_mask16(Vector mask) { return _mm256_unpacklo_epi8(mask, mask); }
    static Vector high_mask16(Vector mask) { return _mm256_unpackhi_epi8(mask, mask); }
    static Vector narrow(Vector low, Vector high) { return _mm256_packus_epi16(low, high); }
    static Vector add16(Vector a, Vector b) { return _mm256_add_epi16(a, b); }
    static Vector sub16(Vector a, Vector b) { return _mm256_sub_epi16(a, b); }
    static Vector multiply16(Vector a, Vector b) { return _mm256_mullo_epi16(a, b); }
    static Vector multiply_high16(Vector a, Vector b) { return _mm256_mulhi_epu16(a, b); }
    template<int count>
    static Vector shift_right16(Vector a) {
        return _mm256_srli_epi16(a, count);
    }
    static Vector equal16(Vector a, Vector b) { return _mm256_cmpeq_epi16(a, b); }
    template<size_t n>
    static Vector equal_any16(Vector a, const int (&values)[n]) {
        Vector found = equal16(a, all16(values[0]));
        for (size_t i = 1; i < n; ++i)
            found = either(found, equal16(a, all16(values[i])));
        return found;
    }
    static Vector unsigned_min16(Vector a, Vector b) { return _mm256_min_epu16(a, b); }

    static Vector quotient16(Vector a, Vector b) {
        const Vector zero = _mm256_setzero_si256();
        return _mm256_packs_epi32(
            quotient32(_mm256_unpacklo_epi16(a, zero), _mm256_unpacklo_epi16(b, zero)),
            quotient32(_mm256_unpackhi_epi16(a, zero), _mm256_unpackhi_epi16(b, zero)));
    }

  private:
    static Vector lanes(char a, char b, char c, char d, char e, char f, char g, char h, char i,
                        char j, char k, char l, char m, char n, char o, char p) {
        return _mm256_broadcastsi128_si256(
            _mm_setr_epi8(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p));
    }
    // Bytes 0, 3, 6 ... of the first vector, 1, 4 ... of the second, 2, 5 ... of the third.
    static Vector every_third(Vector a, Vector b, Vector c) {
        const Vector second = lanes(0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0);
        const Vector third = lanes(0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0);
        return _mm256_blendv_epi8(_mm256_blendv_epi8(a, b, second), c, third);
    }
    static Vector load_halves(const uint8_t* low, const uint8_t* high) {
        return _mm256_inserti128_si256(
            _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(low))),
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(high)), 1);
    }
    static void store_halves(uint8_t* low, uint8_t* high, Vector v) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(low), _mm256_castsi256_si128(v));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(high), _mm256_extracti128_si256(v, 1));
    }
    static Vector quotient32(Vector a, Vector b) {
        const __m256 divisor = _mm256_cvtepi32_ps(b), rough = _mm256_rcp_ps(divisor);
        const __m256 reciprocal = _mm256_mul_ps(
            rough, _mm256_sub_ps(_mm256_set1_ps(2.0f), _mm256_mul_ps(divisor, rough)));
        const __m256 dividend = _mm256_add_ps(_mm256_cvtepi32_ps(a), _mm256_set1_ps(0.5f));
        return _mm256_cvttps_epi32(_mm256_mul_ps(dividend, reciprocal));
    }
};

} // namespace kirvo::avx2
