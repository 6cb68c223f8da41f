// The wrapper of AVX-512 (F, BW, DQ, VL, VBMI and VPOPCNTDQ): vectors of 64 bytes. What the members
// mean stands in vector_sse2.hpp.
#pragma once

#include "simd/dct.hpp"
#include "simd/kernel_types.hpp"
#include "simd/shared_operations.hpp"

#include <immintrin.h>

namespace kirvo::avx512 {
namespace {

#define KIRVO_REGISTER __m512i
#define KIRVO_MM(operation) _mm512_##operation
#define KIRVO_BROADCAST _mm512_broadcast_i32x4
#include "simd/vector_avx.hpp"

// Where each byte of a vector comes from.
struct Places {
    alignas(64) uint8_t from[64];

    template<typename From>
    constexpr explicit Places(const From& from_) : from{} {
        for (int i = 0; i < 64; ++i)
            from[i] = static_cast<uint8_t>(from_(i));
    }
    // 32-bit code loads it for each use: in a register all the time, it would drive sums out of theirs.
    __m512i vector() const {
        return sizeof(void*) == 4 ? VectorX86::load_once(from) : VectorX86::load(from);
    }
};

struct Vector : VectorAvx {
    static Register equal8(Register a, Register b) {
        return _mm512_movm_epi8(_mm512_cmpeq_epi8_mask(a, b));
    }
    static Register equal16(Register a, Register b) {
        return _mm512_movm_epi16(_mm512_cmpeq_epi16_mask(a, b));
    }
    static Register rotated32(Register a, Register counts) { return _mm512_rolv_epi32(a, counts); }
    static Register select(Register mask, Register yes, Register no) {
        return _mm512_ternarylogic_epi32(mask, yes, no, 0xCA);
    }
    static Register with_sign16(Register magnitude, Register a) {
        return _mm512_mask_sub_epi16(magnitude, _mm512_movepi16_mask(a), zero(), magnitude);
    }
    static Register bits32(Register a) { return _mm512_popcnt_epi32(a); } // how many are set
    // Sums of the first and second, and of the third and fourth, 16 bytes of each vector.
    static Register sums_of_parts(Register a, Register b) {
        return add32(_mm512_shuffle_i32x4(a, b, 0x88), _mm512_shuffle_i32x4(a, b, 0xDD));
    }
    static Register in_order(Register a) {
        return _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), a);
    }
    static Register low_words(Register a, Register b) {
        static constexpr Places even([](int i) { return i % 2 == 0 ? i : 0; });
        return _mm512_permutex2var_epi16(a, even.vector(), b);
    }
    static Halves load_halves16(const int16_t* from) {
        const Register first = load_once(from), second = load_once(from + 32);
        return {
            _mm512_permutex2var_epi64(first, _mm512_setr_epi64(0, 1, 4, 5, 8, 9, 12, 13), second),
            _mm512_permutex2var_epi64(first, _mm512_setr_epi64(2, 3, 6, 7, 10, 11, 14, 15),
                                      second)};
    }
    static Halves halves_in_order(const Halves& v) {
        return {
            _mm512_permutex2var_epi64(v.low, _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11), v.high),
            _mm512_permutex2var_epi64(v.low, _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15),
                                      v.high)};
    }

    // From so many bytes, at most 64, behind the start of the first of two vectors on.
    static Register shifted(Register a, Register b, size_t bytes) {
        static constexpr Places all([](int i) { return i; });
        const Register places = add8(all.vector(), all8(static_cast<int>(bytes)));
        return _mm512_permutex2var_epi8(a, places, b);
    }

    // Byte 3p + c of three vectors goes to byte p of vector c, and back.
    static Planes load_planes(const uint8_t* bgr) {
        static constexpr Places places[] = {Places([](int p) { return 3 * p; }),
                                            Places([](int p) { return 3 * p + 1; }),
                                            Places([](int p) { return 3 * p + 2; })};
        const Planes p = {load_once(bgr), load_once(bgr + 64), load_once(bgr + 128)};
        return {moved_by(p, places[0]), moved_by(p, places[1]), moved_by(p, places[2])};
    }
    static void store_planes(uint8_t* bgr, const Planes& p) {
        static constexpr Places places[] = {
            Places([](int i) { return i / 3 + 64 * (i % 3); }),
            Places([](int i) { return (i + 64) / 3 + 64 * ((i + 64) % 3); }),
            Places([](int i) { return (i + 128) / 3 + 64 * ((i + 128) % 3); })};
#pragma GCC unroll 3
        for (int i = 0; i < 3; ++i)
            store(bgr + 64 * i, moved_by(p, places[i]));
    }

    static constexpr size_t words = size / 4;
    template<size_t step>
    static void transpose_parts(Register* v) {
        const Register even0 = _mm512_shuffle_i32x4(v[0], v[step], 0x88);
        const Register odd0 = _mm512_shuffle_i32x4(v[0], v[step], 0xDD);
        const Register even1 = _mm512_shuffle_i32x4(v[2 * step], v[3 * step], 0x88);
        const Register odd1 = _mm512_shuffle_i32x4(v[2 * step], v[3 * step], 0xDD);
        v[0] = _mm512_shuffle_i32x4(even0, even1, 0x88);
        v[step] = _mm512_shuffle_i32x4(odd0, odd1, 0x88);
        v[2 * step] = _mm512_shuffle_i32x4(even0, even1, 0xDD);
        v[3 * step] = _mm512_shuffle_i32x4(odd0, odd1, 0xDD);
    }
    template<int bytes>
    static Register load_row(const uint8_t* from) {
        if constexpr (bytes == 1) {
            return _mm512_cvtepu8_epi32(_mm_loadu_epi8(from));
        } else if constexpr (bytes == 2) {
            return _mm512_cvtepu16_epi32(_mm256_loadu_epi16(from));
        } else if constexpr (bytes == 3) {
            static constexpr Places apart([](int i) { return i % 4 == 3 ? 0 : i / 4 * 3 + i % 4; });
            const Register pixels = _mm512_maskz_loadu_epi32(twelve_words, from);
            return _mm512_permutexvar_epi8(apart.vector(), pixels);
        } else {
            return load_once(from);
        }
    }
    template<int bytes>
    static void store_row(uint8_t* to, Register v) {
        if constexpr (bytes == 1) {
            _mm_storeu_epi8(to, _mm512_cvtepi32_epi8(v));
        } else if constexpr (bytes == 2) {
            _mm256_storeu_epi16(to, _mm512_cvtepi32_epi16(v));
        } else if constexpr (bytes == 3) {
            static constexpr Places close_up([](int i) { return i < 48 ? i / 3 * 4 + i % 3 : 0; });
            _mm512_mask_storeu_epi32(to, twelve_words,
                                     _mm512_permutexvar_epi8(close_up.vector(), v));
        } else {
            store(to, v);
        }
    }
    // Four rows of 24-bit pixels from three vectors, and back.
    static void load_rows24(Register (&v)[4], const uint8_t* bgr) {
        static constexpr auto spread = [](int first) {
            return Places([=](int i) { return first + i / 4 * 3 + (i % 4 == 3 ? 0 : i % 4); });
        };
        static constexpr Places places[] = {spread(0), spread(48), spread(32), spread(16)};
        const Planes p = {load_once(bgr), load_once(bgr + 64), load_once(bgr + 128)};
        v[0] = _mm512_permutexvar_epi8(places[0].vector(), p.blue);
        v[1] = _mm512_permutex2var_epi8(p.blue, places[1].vector(), p.green);
        v[2] = _mm512_permutex2var_epi8(p.green, places[2].vector(), p.red);
        v[3] = _mm512_permutexvar_epi8(places[3].vector(), p.red);
    }
    static void store_rows24(uint8_t* bgr, const Register (&v)[4]) {
        static constexpr auto close_up = [](int first) {
            return Places([=](int i) { return (first + i) / 3 * 4 + (first + i) % 3; });
        };
        static constexpr Places places[] = {close_up(0), close_up(16), close_up(32)};
#pragma GCC unroll 3
        for (int i = 0; i < 3; ++i)
            store(bgr + 64 * i, _mm512_permutex2var_epi8(v[i], places[i].vector(), v[i + 1]));
    }

    static constexpr size_t run = 21;
    static Register run_of(const uint8_t* bgr) { return pixels_of<64>(bgr); }
    static Register equal_pixels(Register a, Register b) {
        static constexpr Places second([](int i) { return i / 3 * 3 + (i + 1) % 3; });
        static constexpr Places third([](int i) { return i / 3 * 3 + (i + 2) % 3; });
        static constexpr Places behind([](int i) { return i < 63 ? 0 : 0xFF; });
        const Register same = equal8(a, b);
        return (same & _mm512_permutexvar_epi8(second.vector(), same) &
                _mm512_permutexvar_epi8(third.vector(), same)) |
               behind.vector();
    }

    // Four registers: two permutes of 128 bytes each, and the byte's top bit chooses.
    class Table {
      public:
        explicit Table(const Levels& levels) {
            for (int i = 0; i < 4; ++i)
                part_[i] = load(levels.level + 64 * i);
        }
        Register operator[](Register bytes) const {
            const Register low = _mm512_permutex2var_epi8(part_[0], bytes, part_[1]);
            const Register high = _mm512_permutex2var_epi8(part_[2], bytes, part_[3]);
            return _mm512_mask_blend_epi8(_mm512_movepi8_mask(bytes), low, high);
        }

      private:
        Register part_[4];
    };

    static constexpr int blocks = 4;
    static Register load_block_row(const int8_t* samples) {
        return _mm512_cvtepi8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(samples)));
    }
    static void scan(const Register (&rows)[8], uint8_t (*small)[64], uint64_t* nonzero) {
        // Part b of vector i holds natural rows 2i and 2i + 1 of block b.
        Register natural[4];
        for (int i = 0; i < 4; ++i)
            natural[i] = narrow16_signed(rows[2 * i], rows[2 * i + 1]);
        transpose_parts<1>(natural);
        static constexpr auto places = zigzag; // a level lends no other its data
        const Register order = load(places.data());
        for (int block = 0; block < 4; ++block) {
            const Register levels = _mm512_permutexvar_epi8(order, natural[block]);
            store(small[block], add8(levels, all8(small_levels)));
            nonzero[block] = _mm512_test_epi8_mask(levels, levels);
        }
    }

  private:
    static constexpr __mmask16 twelve_words = 0x0FFF; // of 16 pixels of 24 bits

    // The permutes look at the low 7 and the low 6 bits of a place; its top bit says which holds.
    static Register moved_by(const Planes& p, const Places& places) {
        const Register from = places.vector();
        return _mm512_mask_permutexvar_epi8(_mm512_permutex2var_epi8(p.blue, from, p.green),
                                            _mm512_movepi8_mask(from), from, p.red);
    }
};

} // namespace
} // namespace kirvo::avx512
