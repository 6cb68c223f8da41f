// The wrapper of WebAssembly: vectors of 16 bytes. What the members mean stands in vector_x86.hpp and
// vector_sse2.hpp.
#pragma once

#include "simd/dct.hpp"
#include "simd/kernel_types.hpp"
#include "simd/shared_operations.hpp"

#include <array>
#include <utility>
#include <wasm_simd128.h>

namespace kirvo::wasm {
namespace {

struct Vector {
    using Register = v128_t;
    static constexpr size_t size = sizeof(Register);

    static Register load(const void* from) { return wasm_v128_load(from); }
    static Register opaque(Register v) { return v; }
    static Register load_once(const void* from) { return load(from); }
    static void store(void* to, Register v) { wasm_v128_store(to, v); }
    static void stream(uint8_t* to, Register v) { store(to, v); }
    static void end_stream() {}
    static Register zero() { return Register{}; }
    static Register either(Register a, Register b) { return wasm_v128_or(a, b); }
    static Register both(Register a, Register b) { return wasm_v128_and(a, b); }
    static Register but_not(Register a, Register b) { return wasm_v128_andnot(a, b); }
    static Register differing(Register a, Register b) { return wasm_v128_xor(a, b); }
    static Register select(Register mask, Register yes, Register no) {
        return wasm_v128_bitselect(yes, no, mask);
    }

    static Register all8(int value) { return wasm_i8x16_splat(static_cast<int8_t>(value)); }
    static Register add8(Register a, Register b) { return wasm_i8x16_add(a, b); }
    static Register add8_to_255(Register a, Register b) { return wasm_u8x16_add_sat(a, b); }
    static Register sub8(Register a, Register b) { return wasm_i8x16_sub(a, b); }
    static Register sub8_to_0(Register a, Register b) { return wasm_u8x16_sub_sat(a, b); }
    static Register average8(Register a, Register b) { return wasm_u8x16_avgr(a, b); }
    static Register max8(Register a, Register b) { return wasm_u8x16_max(a, b); }
    static Register min8(Register a, Register b) { return wasm_u8x16_min(a, b); }
    static Register equal8(Register a, Register b) { return wasm_i8x16_eq(a, b); }
    static Register zip_low8(Register a, Register b) { return zipped<1, 0>(a, b); }
    static Register zip_high8(Register a, Register b) { return zipped<1, 8>(a, b); }
    static Register widen_low8(Register a) { return wasm_u16x8_extend_low_u8x16(a); }
    static Register widen_high8(Register a) { return wasm_u16x8_extend_high_u8x16(a); }
    static Register narrow16(Register low, Register high) {
        return wasm_u8x16_narrow_i16x8(low, high);
    }
    static Register narrow16_signed(Register low, Register high) {
        return wasm_i8x16_narrow_i16x8(low, high);
    }
    static Register pair_sums8(Register a) { return wasm_u16x8_extadd_pairwise_u8x16(a); }
    static Register pair_sums8_signed(Register a) { return wasm_i16x8_extadd_pairwise_i8x16(a); }

    static Register all16(int value) { return wasm_i16x8_splat(static_cast<int16_t>(value)); }
    static Register add16(Register a, Register b) { return wasm_i16x8_add(a, b); }
    static Register sub16(Register a, Register b) { return wasm_i16x8_sub(a, b); }
    static Register max16(Register a, Register b) { return wasm_i16x8_max(a, b); }
    static Register min16(Register a, Register b) { return wasm_i16x8_min(a, b); }
    static Register min16_unsigned(Register a, Register b) { return wasm_u16x8_min(a, b); }
    static Register equal16(Register a, Register b) { return wasm_i16x8_eq(a, b); }
    static Register magnitude16(Register a) { return wasm_i16x8_abs(a); }
    static Register with_sign16(Register magnitude, Register a) {
        const Register sign = shift_right16_signed<15>(a);
        return sub16(differing(magnitude, sign), sign);
    }
    static Register multiply16(Register a, Register b) { return wasm_i16x8_mul(a, b); }
    static Register multiply_high16(Register a, Register b) {
        return high_words(wasm_u32x4_extmul_low_u16x8(a, b), wasm_u32x4_extmul_high_u16x8(a, b));
    }
    static Register multiply_high16_signed(Register a, Register b) {
        return high_words(wasm_i32x4_extmul_low_i16x8(a, b), wasm_i32x4_extmul_high_i16x8(a, b));
    }
    KIRVO_SHIFT(shift_left16, wasm_i16x8_shl)
    KIRVO_SHIFT(shift_right16, wasm_u16x8_shr)
    static Register shift_right16(Register a, int count) {
        return wasm_u16x8_shr(a, static_cast<uint32_t>(count));
    }
    KIRVO_SHIFT(shift_right16_signed, wasm_i16x8_shr)
    static Register zip_low16(Register a, Register b) { return zipped<2, 0>(a, b); }
    static Register zip_high16(Register a, Register b) { return zipped<2, 8>(a, b); }
    static Register narrow32(Register low, Register high) {
        return wasm_i16x8_narrow_i32x4(low, high);
    }
    static Register low_words(Register a, Register b) {
        return shuffled<[](int i) { return i / 2 * 4 + i % 2; }>(a, b);
    }
    static Register quotient16(Register a, Register b) {
        return narrow32(
            quotient32(wasm_u32x4_extend_low_u16x8(a), wasm_u32x4_extend_low_u16x8(b)),
            quotient32(wasm_u32x4_extend_high_u16x8(a), wasm_u32x4_extend_high_u16x8(b)));
    }

    static Register all32(int value) { return wasm_i32x4_splat(value); }
    static Register all_pairs16(int first, int second) {
        return all32((first & 0xFFFF) | static_cast<int>(static_cast<uint32_t>(second) << 16));
    }
    static Register add32(Register a, Register b) { return wasm_i32x4_add(a, b); }
    static Register sub32(Register a, Register b) { return wasm_i32x4_sub(a, b); }
    static Register max32(Register a, Register b) { return wasm_i32x4_max(a, b); }
    static Register dot16(Register a, Register b) { return wasm_i32x4_dot_i16x8(a, b); }
    // A count of bits for all lanes.
    struct Count {
        uint32_t bits;
        Count(uint32_t count) : bits(count) {}
    };
    static Register shift_left32(Register a, Count count) { return wasm_i32x4_shl(a, count.bits); }
    static Register shift_right32(Register a, Count count) { return wasm_u32x4_shr(a, count.bits); }
    KIRVO_SHIFT(shift_left32, wasm_i32x4_shl)
    KIRVO_SHIFT(shift_right32, wasm_u32x4_shr)
    KIRVO_SHIFT(shift_right32_signed, wasm_i32x4_shr)
    static Register zip_low32(Register a, Register b) { return zipped<4, 0>(a, b); }
    static Register zip_high32(Register a, Register b) { return zipped<4, 8>(a, b); }
    static Register zip_low64(Register a, Register b) { return zipped<8, 0>(a, b); }
    static Register zip_high64(Register a, Register b) { return zipped<8, 8>(a, b); }
    static Register even32(Register a, Register b) {
        return shuffled<[](int i) { return i / 4 * 8 + i % 4; }>(a, b);
    }
    static Register odd32(Register a, Register b) {
        return shuffled<[](int i) { return i / 4 * 8 + i % 4 + 4; }>(a, b);
    }
    static Register scaled32(Register a, uint32_t factor, int count) {
        const Register factors = wasm_u32x4_splat(factor);
        const auto places = static_cast<uint32_t>(count);
        return even32(wasm_u64x2_shr(wasm_u64x2_extmul_low_u32x4(a, factors), places),
                      wasm_u64x2_shr(wasm_u64x2_extmul_high_u32x4(a, factors), places));
    }

    // Nothing is interleaved here by widening and narrowing.
    static Register in_order(Register a) { return a; }
    struct Halves {
        Register low, high;
    };
    static Halves load_halves16(const int16_t* from) { return {load(from), load(from + 8)}; }
    static Halves halves_in_order(const Halves& v) { return v; }

    struct Planes {
        Register blue, green, red;
    };
    static Planes load_planes(const uint8_t* bgr) {
        const Register part[] = {load(bgr), load(bgr + 16), load(bgr + 32)};
        return {every_third<0>(part), every_third<1>(part), every_third<2>(part)};
    }
    static void store_planes(uint8_t* bgr, const Planes& p) {
        store(bgr, interleaved<0>(p));
        store(bgr + 16, interleaved<1>(p));
        store(bgr + 32, interleaved<2>(p));
    }

    static constexpr size_t words = size / 4;
    template<int bytes>
    static Register load_row(const uint8_t* from) {
        if constexpr (bytes == 1)
            return wasm_u32x4_extend_low_u16x8(widen_low8(wasm_v128_load32_zero(from)));
        else if constexpr (bytes == 2)
            return wasm_u32x4_load16x4(from);
        else if constexpr (bytes == 3)
            return shuffled<[](int i) { return i / 4 * 3 + i % 4 % 3; }>(
                wasm_v128_load32_lane(from + 8, wasm_v128_load64_zero(from), 2), zero());
        else
            return load(from);
    }
    template<int bytes>
    static void store_row(uint8_t* to, Register v) {
        const Register closed =
            shuffled<[](int i) { return i < 4 * bytes ? i / bytes * 4 + i % bytes : anything; }>(v,
                                                                                                 v);
        if constexpr (bytes == 1) {
            wasm_v128_store32_lane(to, closed, 0);
        } else if constexpr (bytes == 4) {
            store(to, v);
        } else {
            wasm_v128_store64_lane(to, closed, 0);
            if constexpr (bytes == 3)
                wasm_v128_store32_lane(to + 8, closed, 2);
        }
    }
    template<size_t step>
    static void transpose_parts(Register*) {}
    template<int bytes>
    static Register reversed(Register v) {
        return shuffled<[](int i) { return 16 - bytes - i / bytes * bytes + i % bytes; }>(v, v);
    }

    using Pixels = Planes;
    static Pixels load_pixels(const uint8_t* bgr) { return load_planes(bgr); }
    static void store_reversed(uint8_t* to, const Pixels& p) {
        store_planes(to, {reversed<1>(p.blue), reversed<1>(p.green), reversed<1>(p.red)});
    }

    static constexpr size_t run = 5;
    static Register load_run(const uint8_t* from) { return load(from); }
    static void store_run(uint8_t* to, Register v) { store(to, v); }
    static Register run_of(const uint8_t* bgr) {
        uint8_t bytes[size];
        for (size_t i = 0; i < size; ++i)
            bytes[i] = bgr[i % 3];
        return load(bytes);
    }
    static Register equal_pixels(Register a, Register b) {
        const Register same = equal8(a, b);
        return both(of_each_pixel<0>(same), both(of_each_pixel<1>(same), of_each_pixel<2>(same)));
    }

    // Sixteen shuffles for a table of 256 bytes take as long as reading it.
    static constexpr bool has_table = false;

    using Weighted = WeightedSums<Vector>;

    static constexpr int blocks = 1;
    static Register load_block_row(const int8_t* samples) { return wasm_i16x8_load8x8(samples); }
    static void scan(const Register (&rows)[8], uint8_t (*small)[64], uint64_t* nonzero) {
        // Of each 16 levels in zigzag order: where they stand in each 16 in natural order.
        static constexpr auto places = [] {
            std::array<std::array<std::array<uint8_t, 16>, 4>, 4> from = {};
            for (size_t k = 0; k < 64; ++k) {
                for (size_t part = 0; part < 4; ++part)
                    from[k / 16][part][k % 16] =
                        zigzag[k] / 16 == part ? zigzag[k] % 16 : uint8_t{0x80};
            }
            return from;
        }();
        uint64_t mask = 0;
        for (size_t i = 0; i < 4; ++i) {
            Register levels = zero();
            for (size_t part = 0; part < 4; ++part)
                levels = either(
                    levels, wasm_i8x16_swizzle(narrow16_signed(rows[2 * part], rows[2 * part + 1]),
                                               load(places[i][part].data())));
            store(*small + 16 * i, add8(levels, all8(small_levels)));
            const uint64_t zeros = wasm_i8x16_bitmask(equal8(levels, zero()));
            mask |= (zeros ^ 0xFFFF) << (16 * i);
        }
        *nonzero = mask;
    }

  private:
    using Bytes [[gnu::vector_size(16)]] = int8_t;
    static constexpr int anything = -1;

    // The bytes of two vectors, 0 to 15 and 16 to 31: place(i) comes to i.
    template<auto place>
    [[gnu::always_inline]] static Register shuffled(Register a, Register b) {
        return shuffled_by<place>(a, b, std::make_integer_sequence<int, 16>());
    }
    template<auto place, int... i>
    [[gnu::always_inline]] static Register shuffled_by(Register a, Register b,
                                                       std::integer_sequence<int, i...>) {
        return reinterpret_cast<Register>(__builtin_shufflevector(
            reinterpret_cast<Bytes>(a), reinterpret_cast<Bytes>(b), place(i)...));
    }
    // Elements of both in turn, from a byte on.
    template<int bytes, int from>
    static Register zipped(Register a, Register b) {
        return shuffled<[](int i) {
            return i / bytes % 2 * 16 + from + i / bytes / 2 * bytes + i % bytes;
        }>(a, b);
    }
    // The high 16 bits of each 32.
    static Register high_words(Register low, Register high) {
        return shuffled<[](int i) { return i / 2 * 4 + i % 2 + 2; }>(low, high);
    }
    // A channel of 16 pixels.
    template<int channel>
    static Register every_third(const Register (&part)[3]) {
        const Register first =
            shuffled<[](int i) { return 3 * i + channel < 32 ? 3 * i + channel : anything; }>(
                part[0], part[1]);
        return shuffled<[](int i) { return 3 * i + channel < 32 ? i : 3 * i + channel - 16; }>(
            first, part[2]);
    }
    // 16 of the 48 bytes of 16 pixels.
    template<int part>
    static Register interleaved(const Planes& p) {
        const Register two = shuffled<[](int i) {
            const int at = 16 * part + i;
            return at % 3 == 2 ? anything : at % 3 * 16 + at / 3;
        }>(p.blue, p.green);
        return shuffled<[](int i) {
            const int at = 16 * part + i;
            return at % 3 == 2 ? 16 + at / 3 : i;
        }>(two, p.red);
    }
    // A byte of each pixel of a run in all three places, and ones beyond them.
    template<int byte>
    static Register of_each_pixel(Register v) {
        return shuffled<[](int i) { return i < 15 ? i / 3 * 3 + byte : 16; }>(v, all8(-1));
    }
    static Register quotient32(Register a, Register b) {
        return wasm_i32x4_trunc_sat_f32x4(
            wasm_f32x4_div(wasm_f32x4_convert_i32x4(a), wasm_f32x4_convert_i32x4(b)));
    }
};

} // namespace
} // namespace kirvo::wasm
