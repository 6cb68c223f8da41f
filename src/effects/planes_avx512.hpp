// Pixels as planes of bytes, and what the kernels do with vectors: AVX-512 with VBMI, 64 pixels.
#pragma once

#include <cstddef>
#include <cstdint>
#include <immintrin.h>

namespace kirvo::avx512 {

// Where the bytes of three vectors come from: the place within 64 and 64 times the vector.
struct Places {
    alignas(64) uint8_t from[3][64];
};
// Byte 3p + c of three vectors goes to byte p of vector c ...
constexpr Places to_planes = [] {
    Places places{};
    for (int c = 0; c < 3; ++c) {
        for (int p = 0; p < 64; ++p)
            places.from[c][p] = static_cast<uint8_t>(3 * p + c);
    }
    return places;
}();
// ... and back.
constexpr Places to_pixels = [] {
    Places places{};
    for (int i = 0; i < 192; ++i)
        places.from[i / 64][i % 64] = static_cast<uint8_t>(i / 3 + 64 * (i % 3));
    return places;
}();

struct Planes {
    using Vector = __m512i;
    static constexpr size_t pixels = 64;
    Vector blue, green, red;

    static Planes load(const uint8_t* bgr) {
        return Planes{load_bytes(bgr), load_bytes(bgr + 64), load_bytes(bgr + 128)}.moved(
            to_planes);
    }
    void store(uint8_t* bgr) const {
        const Planes p = moved(to_pixels);
        store_bytes(bgr, p.blue);
        store_bytes(bgr + 64, p.green);
        store_bytes(bgr + 128, p.red);
    }

    static Vector load_bytes(const uint8_t* from) { return _mm512_loadu_si512(from); }
    static void store_bytes(uint8_t* to, Vector v) { _mm512_storeu_si512(to, v); }

    static Vector all8(int32_t value) { return _mm512_set1_epi8(static_cast<char>(value)); }
    static Vector max8(Vector a, Vector b) { return _mm512_max_epu8(a, b); }
    static Vector min8(Vector a, Vector b) { return _mm512_min_epu8(a, b); }
    static Vector add8(Vector a, Vector b) { return _mm512_add_epi8(a, b); }
    static Vector sub8(Vector a, Vector b) { return _mm512_sub_epi8(a, b); }
    static Vector sub8_to_0(Vector a, Vector b) { return _mm512_subs_epu8(a, b); }
    static Vector equal8(Vector a, Vector b) {
        return _mm512_movm_epi8(_mm512_cmpeq_epi8_mask(a, b));
    }
    static Vector select(Vector mask, Vector yes, Vector no) {
        return _mm512_ternarylogic_epi32(mask, yes, no, 0xCA);
    }
    static Vector both(Vector a, Vector b) { return _mm512_and_si512(a, b); }
    static Vector either(Vector a, Vector b) { return _mm512_or_si512(a, b); }
    static Vector but_not(Vector a, Vector b) { return _mm512_andnot_si512(b, a); }
    static Vector differing(Vector a, Vector b) { return _mm512_xor_si512(a, b); }

    static Vector all16(int32_t value) { return _mm512_set1_epi16(static_cast<short>(value)); }
    static Vector low16(Vector bytes) {
        return _mm512_unpacklo_epi8(bytes, _mm512_setzero_si512());
    }
    static Vector high16(Vector bytes) {
        return _mm512_unpackhi_epi8(bytes, _mm512_setzero_si512());
    }
    static Vector low_mask16(Vector mask) { return _mm512_unpacklo_epi8(mask, mask); }
    static Vector high_mask16(Vector mask) { return _mm512_unpackhi_epi8(mask, mask); }
    static Vector narrow(Vector low, Vector high) { return _mm512_packus_epi16(low, high); }
    static Vector add16(Vector a, Vector b) { return _mm512_add_epi16(a, b); }
    static Vector sub16(Vector a, Vector b) { return _mm512_sub_epi16(a, b); }
    static Vector multiply16(Vector a, Vector b) { return _mm512_mullo_epi16(a, b); }
    static Vector multiply_high16(Vector a, Vector b) { return _mm512_mulhi_epu16(a, b); }
    template<int count>
    static Vector shift_right16(Vector a) {
        return _mm512_srli_epi16(a, count);
    }
    static Vector equal16(Vector a, Vector b) {
        return _mm512_movm_epi16(_mm512_cmpeq_epi16_mask(a, b));
    }
    template<size_t n>
    static Vector equal_any16(Vector a, const int (&values)[n]) {
        __mmask32 found = 0;
        for (int value : values)
            found |= _mm512_cmpeq_epi16_mask(a, all16(value));
        return _mm512_movm_epi16(found);
    }
    static Vector unsigned_min16(Vector a, Vector b) { return _mm512_min_epu16(a, b); }

    static Vector quotient16(Vector a, Vector b) {
        const Vector zero = _mm512_setzero_si512();
        return _mm512_packs_epi32(
            quotient32(_mm512_unpacklo_epi16(a, zero), _mm512_unpacklo_epi16(b, zero)),
            quotient32(_mm512_unpackhi_epi16(a, zero), _mm512_unpackhi_epi16(b, zero)));
    }

  private:
    // The permutes look at the low 7 and the low 6 bits of a place; its top bit says which holds.
    Vector moved_by(const uint8_t (&from)[64]) const {
        const Vector places = _mm512_load_si512(from);
        return _mm512_mask_permutexvar_epi8(_mm512_permutex2var_epi8(blue, places, green),
                                            _mm512_movepi8_mask(places), places, red);
    }
    Planes moved(const Places& places) const {
        return {moved_by(places.from[0]), moved_by(places.from[1]), moved_by(places.from[2])};
    }
    static Vector quotient32(Vector a, Vector b) {
        const __m512 divisor = _mm512_cvtepi32_ps(b), rough = _mm512_rcp14_ps(divisor);
        const __m512 reciprocal = _mm512_mul_ps(
            rough, _mm512_sub_ps(_mm512_set1_ps(2.0f), _mm512_mul_ps(divisor, rough)));
        const __m512 dividend = _mm512_add_ps(_mm512_cvtepi32_ps(a), _mm512_set1_ps(0.5f));
        return _mm512_cvttps_epi32(_mm512_mul_ps(dividend, reciprocal));
    }
};

} // namespace kirvo::avx512
