// The wrapper of SSE2: vectors of 16 bytes. Its comments hold for every level.
#pragma once

#include "simd/dct.hpp"
#include "simd/kernel_types.hpp"
#include "simd/shared_operations.hpp"

#include <cstring>
#include <emmintrin.h>
#include <utility>

namespace kirvo::sse2 {
namespace {

#define KIRVO_REGISTER __m128i
#define KIRVO_MM(operation) _mm_##operation
#include "simd/vector_x86.hpp"
#undef KIRVO_REGISTER
#undef KIRVO_MM

struct Vector : VectorX86 {
    static Register equal8(Register a, Register b) { return _mm_cmpeq_epi8(a, b); }
    static Register equal16(Register a, Register b) { return _mm_cmpeq_epi16(a, b); }
    static Register select(Register mask, Register yes, Register no) {
        return (mask & yes) | (no & ~mask);
    }
    static Register min16_unsigned(Register a, Register b) {
        return _mm_sub_epi16(a, _mm_subs_epu16(a, b));
    }
    static Register max32(Register a, Register b) { // signed
        return select(_mm_cmpgt_epi32(a, b), a, b);
    }
    static Register magnitude16(Register a) { return max16(a, sub16(zero(), a)); }
    static Register with_sign16(Register magnitude, Register a) {
        const Register sign = shift_right16_signed<15>(a);
        return sub16(magnitude ^ sign, sign);
    }
    // The low 16 bits of each 32, in order, without the signed saturation of the only pack that there is.
    static Register low_words(Register a, Register b) {
        return narrow32(shift_right32_signed<16>(shift_left32<16>(a)),
                        shift_right32_signed<16>(shift_left32<16>(b)));
    }
    // Bytes or 16-bit numbers whose 16-byte parts were interleaved by narrowing, in order.
    static Register in_order(Register a) { return a; }
    // In the halves, so that narrowing them leaves bytes in order.
    static Halves load_halves16(const int16_t* from) { return {load(from), load(from + 8)}; }
    // What was widened from bytes in order, in order itself.
    static Halves halves_in_order(const Halves& v) { return v; }

    // Sums of two bytes side by side, unsigned and signed.
    static Register pair_sums8(Register a) { return add16(a & all16(0xFF), shift_right16<8>(a)); }
    static Register pair_sums8_signed(Register a) {
        return add16(shift_right16_signed<8>(shift_left16<8>(a)), shift_right16_signed<8>(a));
    }

    // The 48 bytes of 16 pixels, three vectors, are shuffled as two packs of cards are: the first
    // half is zipped with the second. Four times multiplies each place by 16, modulo 47, which
    // takes byte 3p + c to 16c + p.
    static Planes load_planes(const uint8_t* bgr) {
        Planes p = {load(bgr), load(bgr + 16), load(bgr + 32)};
        for (int i = 0; i < 4; ++i)
            p = {zip_low8(p.blue, _mm_srli_si128(p.green, 8)),
                 zip_low8(_mm_srli_si128(p.blue, 8), p.red),
                 zip_low8(p.green, _mm_srli_si128(p.red, 8))};
        return p;
    }
    static void store_planes(uint8_t* bgr, const Planes& p) {
        const Register low = zip_low8(p.blue, p.green), high = zip_high8(p.blue, p.green);
        const Register red_low = widen_low8(p.red), red_high = widen_high8(p.red);
        store_row<3>(bgr, zip_low16(low, red_low));
        store_row<3>(bgr + 12, zip_high16(low, red_low));
        store_row<3>(bgr + 24, zip_low16(high, red_high));
        store_row<3>(bgr + 36, zip_high16(high, red_high));
    }

    // As many pixels of 1 to 4 bytes as a vector has words, one in each. The top byte of a 3-byte
    // pixel may be anything.
    static constexpr size_t words = size / 4;
    template<int bytes>
    static Register load_row(const uint8_t* from) {
        if constexpr (bytes == 1)
            return widen_low16(widen_low8(load_4(from)));
        else if constexpr (bytes == 2)
            return widen_low16(load_8(from));
        else if constexpr (bytes == 3)
            return spread(zip_low64(load_8(from), load_4(from + 8)));
        else
            return load_once(from);
    }
    template<int bytes>
    static void store_row(uint8_t* to, Register v) {
        if constexpr (bytes == 1) {
            store_4(to, narrow16(narrow32(v, v), v));
        } else if constexpr (bytes == 2) {
            store_8(to, low_words(v, v));
        } else if constexpr (bytes == 3) {
            const Register closed = close_up(v & all32(0xFFFFFF));
            store_8(to, closed);
            store_4(to + 8, _mm_srli_si128(closed, 8));
        } else {
            store(to, v);
        }
    }
    // Of vectors that lie a step apart, as many as each has 16 bytes: a square of these, rows to columns.
    template<size_t step>
    static void transpose_parts(Register*) {}
    // Elements of 1, 2 or 4 bytes, the last first.
    template<int bytes>
    static Register reversed(Register v) {
        v = _mm_shuffle_epi32(v, 0x1B);
        if constexpr (bytes <= 2)
            v = _mm_shufflehi_epi16(_mm_shufflelo_epi16(v, 0xB1), 0xB1);
        if constexpr (bytes == 1)
            v = shift_left16<8>(v) | shift_right16<8>(v);
        return v;
    }

    // `size` 24-bit pixels, the last first.
    using Pixels = Planes;
    static Pixels load_pixels(const uint8_t* bgr) { return load_planes(bgr); }
    static void store_reversed(uint8_t* to, const Pixels& p) {
        store_planes(to, {reversed<1>(p.blue), reversed<1>(p.green), reversed<1>(p.red)});
    }

    // Whole 24-bit pixels, as many as fit. The bytes of a vector beyond them are loaded, and stored
    // as they came; they belong to the next run.
    static constexpr size_t run = 5;
    // The colour in every pixel of a run.
    static Register run_of(const uint8_t* bgr) { return pixels_of<16>(bgr); }
    // The mask of the pixels of a run that are equal, and of the bytes beyond them.
    static Register equal_pixels(Register a, Register b) {
        const Register first_bytes =
            _mm_setr_epi8(-1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, 0);
        const Register same = equal8(a, b);
        const Register first =
            same & first_bytes & _mm_srli_si128(same, 1) & _mm_srli_si128(same, 2);
        return first | _mm_slli_si128(first, 1) | _mm_slli_si128(first, 2) |
               _mm_slli_si128(all8(-1), 15);
    }

    // A level without a byte shuffle has no table of 256 entries in registers.
    static constexpr bool has_table = false;

    using Weighted = WeightedSums<Vector>;

    // Rows of blocks of 8 x 8 for the transforms: as many blocks as there are 16 bytes.
    static constexpr int blocks = 1;
    static Register load_block_row(const int8_t* samples) {
        const Register bytes = load_8(samples);
        return shift_right16_signed<8>(zip_low8(bytes, bytes));
    }

    // The levels of `blocks` blocks, a row of them in each vector: clamped to bytes, in zigzag
    // order, small_levels added; and which are not zero.
    static void scan(const Register (&rows)[8], uint8_t (*small)[64], uint64_t* nonzero) {
        int16_t natural[64];
#pragma GCC unroll 8
        for (int i = 0; i < 8; ++i)
            store(natural + 8 * i, rows[i]);
        asm("" : "+m"(natural)); // from registers each would take twice the work
        const auto eight_from = [&]<size_t... i>(size_t k, std::index_sequence<i...>) {
            Register levels = zero();
            ((levels = _mm_insert_epi16(levels, natural[zigzag[k + i]], int{i})), ...);
            return levels;
        };
        constexpr std::make_index_sequence<8> eight;
        uint64_t zeros = 0;
#pragma GCC unroll 4
        for (size_t k = 0; k < 64; k += 16) {
            const Register levels = narrow16_signed(eight_from(k, eight), eight_from(k + 8, eight));
            store(*small + k, _mm_add_epi8(levels, all8(small_levels)));
            zeros |= static_cast<uint64_t>(_mm_movemask_epi8(equal8(levels, zero()))) << k;
        }
        *nonzero = ~zeros;
    }

  private:
    static Register load_4(const void* from) {
        int32_t word;
        std::memcpy(&word, from, sizeof word);
        return _mm_cvtsi32_si128(word);
    }
    static void store_4(void* to, Register v) {
        const int32_t word = _mm_cvtsi128_si32(v);
        std::memcpy(to, &word, sizeof word);
    }
    // The first 12 bytes to four words, and back.
    static Register spread(Register bytes) {
        const Register first = _mm_set_epi32(0, 0x00FFFFFF, 0, 0x00FFFFFF);
        const Register pairs = zip_low64(bytes, _mm_srli_si128(bytes, 6));
        return (pairs & first) | _mm_slli_epi64(pairs & ~first, 8);
    }
    static Register close_up(Register words) {
        const Register first = _mm_set_epi32(0, 0x00FFFFFF, 0, 0x00FFFFFF);
        const Register low_half = _mm_set_epi32(0, 0, -1, -1);
        const Register pairs = (words & first) | _mm_srli_epi64(words & ~first, 8);
        return (pairs & low_half) | _mm_srli_si128(pairs & ~low_half, 2);
    }
};

} // namespace
} // namespace kirvo::sse2
