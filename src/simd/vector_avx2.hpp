// The wrapper of AVX2: vectors of 32 bytes. What the members mean stands in vector_sse2.hpp.
#pragma once

#include "simd/dct.hpp"
#include "simd/kernel_types.hpp"
#include "simd/shared_operations.hpp"

#include <immintrin.h>

namespace kirvo::avx2 {
namespace {

#define KIRVO_REGISTER __m256i
#define KIRVO_MM(operation) _mm256_##operation
#define KIRVO_BROADCAST _mm256_broadcastsi128_si256
#include "simd/vector_avx.hpp"

struct Vector : VectorAvx {
    static Register equal8(Register a, Register b) { return _mm256_cmpeq_epi8(a, b); }
    static Register equal16(Register a, Register b) { return _mm256_cmpeq_epi16(a, b); }
    static Register select(Register mask, Register yes, Register no) {
        return _mm256_blendv_epi8(no, yes, mask);
    }
    static Register with_sign16(Register magnitude, Register a) {
        return _mm256_sign_epi16(magnitude, a);
    }
    static Register in_order(Register a) { return _mm256_permute4x64_epi64(a, 0xD8); }
    static Register low_words(Register a, Register b) {
        return in_order(_mm256_packus_epi32(a & all32(0xFFFF), b & all32(0xFFFF)));
    }
    static Halves load_halves16(const int16_t* from) {
        return {joined(from, from + 16), joined(from + 8, from + 24)};
    }
    static Halves halves_in_order(const Halves& v) {
        return {low_halves(v.low, v.high), high_halves(v.low, v.high)};
    }

    // Each half holds 16 pixels, 48 bytes in three vectors. A channel stands at every third byte,
    // from another place in each vector, so that the three parts lie over each other without
    // collision; one shuffle puts them in order.
    static Planes load_planes(const uint8_t* bgr) {
        const Register v0 = joined(bgr, bgr + 48), v1 = joined(bgr + 16, bgr + 64),
                       v2 = joined(bgr + 32, bgr + 80);
        return {shuffled8(every_third(v0, v2, v1),
                          lanes(0, 3, 6, 9, 12, 15, 2, 5, 8, 11, 14, 1, 4, 7, 10, 13)),
                shuffled8(every_third(v1, v0, v2),
                          lanes(1, 4, 7, 10, 13, 0, 3, 6, 9, 12, 15, 2, 5, 8, 11, 14)),
                shuffled8(every_third(v2, v1, v0),
                          lanes(2, 5, 8, 11, 14, 1, 4, 7, 10, 13, 0, 3, 6, 9, 12, 15))};
    }
    static void store_planes(uint8_t* bgr, const Planes& p) {
        const Register b =
            shuffled8(p.blue, lanes(0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15, 10, 5));
        const Register g =
            shuffled8(p.green, lanes(5, 0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15, 10));
        const Register r =
            shuffled8(p.red, lanes(10, 5, 0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15));
        store_halves(bgr, bgr + 48, every_third(b, g, r));
        store_halves(bgr + 16, bgr + 64, every_third(g, r, b));
        store_halves(bgr + 32, bgr + 80, every_third(r, b, g));
    }

    static constexpr size_t words = size / 4;
    // The upper half of 24 bytes is loaded from 4 bytes before its first pixel.
    template<int bytes>
    static Register load_row(const uint8_t* from) {
        if constexpr (bytes == 1)
            return _mm256_cvtepu8_epi32(load_8(from));
        else if constexpr (bytes == 2)
            return _mm256_cvtepu16_epi32(load_16(from));
        else if constexpr (bytes == 3)
            return shuffled8(joined(from, from + 8),
                             _mm256_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1,
                                              4, 5, 6, -1, 7, 8, 9, -1, 10, 11, 12, -1, 13, 14, 15,
                                              -1));
        else
            return load_once(from);
    }
    // The kept bytes of each half move to its start, then the halves together.
    template<int bytes>
    static void store_row(uint8_t* to, Register v) {
        if constexpr (bytes == 1) {
            v = shuffled8(v, lanes(0, 4, 8, 12, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1));
            store_8(to, low_half(_mm256_permutevar8x32_epi32(
                            v, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7))));
        } else if constexpr (bytes == 2) {
            v = shuffled8(v, lanes(0, 1, 4, 5, 8, 9, 12, 13, -1, -1, -1, -1, -1, -1, -1, -1));
            store_16(to, low_half(in_order(v)));
        } else if constexpr (bytes == 3) {
            v = shuffled8(v, lanes(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1));
            v = _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
            store_16(to, low_half(v));
            store_8(to + 16, high_half(v));
        } else {
            store(to, v);
        }
    }
    template<size_t step>
    static void transpose_parts(Register* v) {
        const Register upper = v[0];
        v[0] = low_halves(upper, v[step]);
        v[step] = high_halves(upper, v[step]);
    }
    template<int bytes>
    static Register reversed(Register v) {
        if constexpr (bytes == 1)
            v = shuffled8(v, lanes(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0));
        else if constexpr (bytes == 2)
            v = shuffled8(v, lanes(14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1));
        else
            v = _mm256_shuffle_epi32(v, 0x1B);
        return _mm256_permute4x64_epi64(v, 0x4E);
    }

    struct Pixels {
        Register part[3];
    };
    // Each half holds 16 pixels, 48 bytes in three vectors. A result takes its bytes from the vectors
    // that hold them; the others give 0 there.
    static void store_reversed(uint8_t* to, const Pixels& p) {
        // Which bytes of the three vectors go to each of them, or -1.
        alignas(16) static constexpr auto places = [] {
            std::array<std::array<std::array<int8_t, 16>, 3>, 3> from = {};
            for (size_t i = 0; i < 48; ++i) {
                const size_t source = (15 - i / 3) * 3 + i % 3;
                for (size_t v = 0; v < 3; ++v)
                    from[i / 16][v][i % 16] =
                        source / 16 == v ? static_cast<int8_t>(source % 16) : int8_t{-1};
            }
            return from;
        }();
        const auto part = [&](size_t result, size_t source) {
            return shuffled8(p.part[source], repeated(places[result][source].data()));
        };
        store_halves(to + 48, to, part(0, 1) | part(0, 2));
        store_halves(to + 64, to + 16, part(1, 0) | part(1, 1) | part(1, 2));
        store_halves(to + 80, to + 32, part(2, 0) | part(2, 1));
    }
    static Pixels load_pixels(const uint8_t* bgr) {
        return {{joined(bgr, bgr + 48), joined(bgr + 16, bgr + 64), joined(bgr + 32, bgr + 80)}};
    }

    // Five pixels in each half.
    static constexpr size_t run = 10;
    static Register load_run(const uint8_t* from) { return joined(from, from + 15); }
    static void store_run(uint8_t* to, Register v) { store_halves(to, to + 15, v); }
    static Register run_of(const uint8_t* bgr) { return pixels_of<16>(bgr); }
    static Register equal_pixels(Register a, Register b) {
        const Register same = equal8(a, b);
        const Register first = same & _mm256_srli_si256(same, 1) & _mm256_srli_si256(same, 2);
        return shuffled8(first, lanes(0, 0, 0, 3, 3, 3, 6, 6, 6, 9, 9, 9, 12, 12, 12, -1)) |
               _mm256_slli_si256(all8(-1), 15);
    }

    // A table of 256 bytes as sixteen shuffles, one for each 16 levels. A shuffle gives 0 for a byte
    // with its top bit set, and otherwise looks at its low four bits. Taking 16 away at each step,
    // without wrapping round, sets that bit one step after the byte's own part of the table. So each
    // byte meets the parts from the first of its half to its own, and each part holds the difference
    // (xor) to the one before it.
    class Table {
      public:
        explicit Table(const Levels& levels) {
            for (int i = 0; i < 16; ++i)
                part_[i] = repeated(levels.level + 16 * i);
            for (int i = 15; i > 0; --i) {
                if (i != 8)
                    part_[i] ^= part_[i - 1];
            }
        }
        Register operator[](Register bytes) const {
            const Register sixteen = all8(16);
            Register low = bytes, high = bytes ^ all8(0x80), mapped = zero();
            for (int i = 0; i < 8; ++i) {
                mapped ^= shuffled8(part_[i], low) ^ shuffled8(part_[i + 8], high);
                low = _mm256_subs_epi8(low, sixteen);
                high = _mm256_subs_epi8(high, sixteen);
            }
            return mapped;
        }

      private:
        Register part_[16];
    };

    static constexpr int blocks = 2;
    static Register load_block_row(const int8_t* samples) {
        return _mm256_cvtepi8_epi16(load_16(samples));
    }
    // The low, or the high, 16 bytes of both.
    static Register low_halves(Register a, Register b) {
        return _mm256_permute2x128_si256(a, b, 0x20);
    }
    static Register high_halves(Register a, Register b) {
        return _mm256_permute2x128_si256(a, b, 0x31);
    }
    static void store_halves(void* low, void* high, Register v) {
        store_16(low, low_half(v));
        store_16(high, high_half(v));
    }

    static void scan(const Register (&rows)[8], uint8_t (*small)[64], uint64_t* nonzero) {
        Register natural[4];
        for (int i = 0; i < 4; ++i)
            natural[i] = narrow16_signed(rows[2 * i], rows[2 * i + 1]);
        const Register quarters[4] = {
            gathered<0, 1, 2>(natural, 0), gathered<0, 1, 2, 3>(natural, 1),
            gathered<0, 1, 2, 3>(natural, 2), gathered<1, 2, 3>(natural, 3)};
        uint64_t zeros[2] = {};
        for (int half = 0; half < 2; ++half) {
            const Register first = quarters[2 * half], second = quarters[2 * half + 1];
            const Register levels[2] = {low_halves(first, second), high_halves(first, second)};
            for (int block = 0; block < 2; ++block) {
                store(small[block] + 32 * half, add8(levels[block], all8(small_levels)));
                const auto mask =
                    static_cast<uint32_t>(_mm256_movemask_epi8(equal8(levels[block], zero())));
                zeros[block] |= static_cast<uint64_t>(mask) << (32 * half);
            }
        }
        nonzero[0] = ~zeros[0];
        nonzero[1] = ~zeros[1];
    }

  private:
    static __m128i low_half(Register v) { return _mm256_castsi256_si128(v); }
    static __m128i high_half(Register v) { return _mm256_extracti128_si256(v, 1); }
    static Register joined(const void* low, const void* high) {
        return _mm256_inserti128_si256(_mm256_castsi128_si256(load_16(low)), load_16(high), 1);
    }
    static Register lanes(char a, char b, char c, char d, char e, char f, char g, char h, char i,
                          char j, char k, char l, char m, char n, char o, char p) {
        return repeated(_mm_setr_epi8(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p));
    }
    // Bytes 0, 3, 6 ... of the first vector, 1, 4 ... of the second, 2, 5 ... of the third.
    static Register every_third(Register a, Register b, Register c) {
        const Register second = lanes(0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0);
        const Register third = lanes(0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0);
        return select(third, c, select(second, b, a));
    }

    // Sixteen zigzag positions from the vectors that hold natural rows 2i and 2i + 1: which byte of
    // vector i stands at each of them, or -1.
    struct ScanStep {
        alignas(16) int8_t from[4][16];
    };
    static constexpr std::array<ScanStep, 4> scan_steps = [] {
        std::array<ScanStep, 4> steps = {};
        for (size_t k = 0; k < 64; ++k) {
            for (int i = 0; i < 4; ++i)
                steps[k / 16].from[i][k % 16] =
                    static_cast<int8_t>(zigzag[k] / 16 == i ? zigzag[k] % 16 : -1);
        }
        return steps;
    }();
    template<int... parts>
    static Register gathered(const Register (&natural)[4], size_t step) {
        return (shuffled8(natural[parts], repeated(scan_steps[step].from[parts])) | ...);
    }
};

} // namespace
} // namespace kirvo::avx2
