// Pixels as planes of bytes, and what the kernels do with vectors: SSE2, 16 pixels.
//
// Every level has a struct Planes with the same members, so that a kernel is written once for all.
// A 16-bit vector holds the low or the high half of each 16 bytes of a byte vector.
#pragma once

#include <cstddef>
#include <cstdint>
#include <emmintrin.h>

namespace kirvo::sse2 {

struct Planes {
    using Vector = __m128i;
    static constexpr size_t pixels = 16;
    Vector blue, green, red;

    // The 48 bytes of 16 pixels, three vectors, are shuffled as two packs of cards are: the first
    // half is zipped with the second. Four times multiplies each place by 16, modulo 47, which
    // takes byte 3p + c to 16c + p.
    static Planes load(const uint8_t* bgr) {
        Planes p = {load_bytes(bgr), load_bytes(bgr + 16), load_bytes(bgr + 32)};
        for (int i = 0; i < 4; ++i)
            p = {_mm_unpacklo_epi8(p.blue, _mm_srli_si128(p.green, 8)),
                 _mm_unpacklo_epi8(_mm_srli_si128(p.blue, 8), p.red),
                 _mm_unpacklo_epi8(p.green, _mm_srli_si128(p.red, 8))};
        return p;
    }
    // The way back: the even bytes, then the odd ones, four times.
    void store(uint8_t* bgr) const {
        Planes p = *this;
        for (int i = 0; i < 4; ++i) {
            const Vector even = even_bytes(p.blue, p.green), odd = odd_bytes(p.blue, p.green);
            const Vector last_even = even_bytes(p.red, p.red), last_odd = odd_bytes(p.red, p.red);
            p = {even, _mm_unpacklo_epi64(last_even, odd),
                 _mm_unpacklo_epi64(_mm_srli_si128(odd, 8), last_odd)};
        }
        store_bytes(bgr, p.blue);
        store_bytes(bgr + 16, p.green);
        store_bytes(bgr + 32, p.red);
    }

    static Vector load_bytes(const uint8_t* from) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    }
    static void store_bytes(uint8_t* to, Vector v) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), v);
    }

    static Vector all8(int32_t value) { return _mm_set1_epi8(static_cast<char>(value)); }
    static Vector max8(Vector a, Vector b) { return _mm_max_epu8(a, b); }
    static Vector min8(Vector a, Vector b) { return _mm_min_epu8(a, b); }
    static Vector add8(Vector a, Vector b) { return _mm_add_epi8(a, b); }
    static Vector sub8(Vector a, Vector b) { return _mm_sub_epi8(a, b); }
    static Vector sub8_to_0(Vector a, Vector b) { return _mm_subs_epu8(a, b); }
    static Vector equal8(Vector a, Vector b) { return _mm_cmpeq_epi8(a, b); }
    static Vector select(Vector mask, Vector yes, Vector no) {
        return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
    }
    static Vector both(Vector a, Vector b) { return _mm_and_si128(a, b); }
    static Vector either(Vector a, Vector b) { return _mm_or_si128(a, b); }
    static Vector but_not(Vector a, Vector b) { return _mm_andnot_si128(b, a); }
    static Vector differing(Vector a, Vector b) { return _mm_xor_si128(a, b); }

    static Vector all16(int32_t value) { return _mm_set1_epi16(static_cast<short>(value)); }
    static Vector low16(Vector bytes) { return _mm_unpacklo_epi8(bytes, _mm_setzero_si128()); }
    static Vector high16(Vector bytes) { return _mm_unpackhi_epi8(bytes, _mm_setzero_si128()); }
    static Vector low_mask16(Vector mask) { return _mm_unpacklo_epi8(mask, mask); }
    static Vector high_mask16(Vector mask) { return _mm_unpackhi_epi8(mask, mask); }
    // Signed, clamped to 0..255.
    static Vector narrow(Vector low, Vector high) { return _mm_packus_epi16(low, high); }
    static Vector add16(Vector a, Vector b) { return _mm_add_epi16(a, b); }
    static Vector sub16(Vector a, Vector b) { return _mm_sub_epi16(a, b); }
    static Vector multiply16(Vector a, Vector b) { return _mm_mullo_epi16(a, b); }
    // a * b >> 16, unsigned.
    static Vector multiply_high16(Vector a, Vector b) { return _mm_mulhi_epu16(a, b); }
    template<int count>
    static Vector shift_right16(Vector a) {
        return _mm_srli_epi16(a, count);
    }
    static Vector equal16(Vector a, Vector b) { return _mm_cmpeq_epi16(a, b); }
    template<size_t n>
    static Vector equal_any16(Vector a, const int (&values)[n]) {
        Vector found = equal16(a, all16(values[0]));
        for (size_t i = 1; i < n; ++i)
            found = either(found, equal16(a, all16(values[i])));
        return found;
    }
    static Vector unsigned_min16(Vector a, Vector b) {
        return _mm_sub_epi16(a, _mm_subs_epu16(a, b));
    }

    // a / b for 16-bit lanes with 1 <= b <= 255 and a <= 60 * b. a + 1/2 over b stays 1/510 or
    // more away from whole numbers, and the reciprocal, refined once, errs by less than 1e-6 of
    // its value, whichever processor estimates it.
    static Vector quotient16(Vector a, Vector b) {
        const Vector zero = _mm_setzero_si128();
        return _mm_packs_epi32(
            quotient32(_mm_unpacklo_epi16(a, zero), _mm_unpacklo_epi16(b, zero)),
            quotient32(_mm_unpackhi_epi16(a, zero), _mm_unpackhi_epi16(b, zero)));
    }

  private:
    static Vector even_bytes(Vector a, Vector b) {
        const Vector byte = _mm_set1_epi16(0xFF);
        return _mm_packus_epi16(_mm_and_si128(a, byte), _mm_and_si128(b, byte));
    }
    static Vector odd_bytes(Vector a, Vector b) {
        return _mm_packus_epi16(_mm_srli_epi16(a, 8), _mm_srli_epi16(b, 8));
    }
    static Vector quotient32(Vector a, Vector b) {
        const __m128 divisor = _mm_cvtepi32_ps(b), rough = _mm_rcp_ps(divisor);
        const __m128 reciprocal =
            _mm_mul_ps(rough, _mm_sub_ps(_mm_set1_ps(2.0f), _mm_mul_ps(divisor, rough)));
        const __m128 dividend = _mm_add_ps(_mm_cvtepi32_ps(a), _mm_set1_ps(0.5f));
        return _mm_cvttps_epi32(_mm_mul_ps(dividend, reciprocal));
    }
};

} // namespace kirvo::sse2
