// Decoding: coefficients to samples, samples to pixels.
#pragma once

#include "simd/dct.hpp"
#include "simd/kernels/loops.hpp"

namespace kirvo {
namespace {

// For vectors of 4 or 8 words.
//
// The inverse transform with 16 x 16 -> 32-bit multiply-adds is exact. The first pass is stated
// with the factors times 8, in sums that wrap at 32 bits, shifted right by 16. A product of 16-bit
// values with factors below 2^15 and the sum of two of them fit 32 bits; every further sum wraps as
// stated, and so does the multiplication of the whole sum by 8 in place of each factor. The shifted
// result has 16 bits, so the second pass runs on 16-bit values again; it needs no factor of 8.
template<typename V>
struct InverseDct {
    using Register = typename V::Register;
    static constexpr int parts = 8 / V::words; // vectors that hold 8 words
    static constexpr int rows_at_once = 3 - parts;

    static void inverse_dct(const int16_t* levels, const int16_t* quantisers, int32_t last,
                            int16_t* samples, ptrdiff_t stride) {
        if (last == 0)
            return flat(static_cast<int16_t>(levels[0] * quantisers[0]), samples, stride);
        Register pairs[parts][4], turned[parts][4], sums[parts][8];
#pragma GCC unroll 2
        for (size_t part = 0; part < parts; ++part) {
#pragma GCC unroll 4
            for (size_t i = 0; i < 4; ++i) {
                const size_t at = 16 * i + 2 * V::words * part;
                pairs[part][i] = V::multiply16(V::load(levels + at), V::load(quantisers + at));
            }
            transform(pairs[part], V::zero(), sums[part]);
            turn(sums[part], turned, static_cast<int>(part));
        }
#pragma GCC unroll 2
        for (int part = 0; part < parts; ++part)
            transform(turned[part], V::all32(1 << 18), sums[part]);
        store_rows(sums, samples, stride);
    }

  private:
    // One-dimensional transforms side by side. in: the pairs of inputs 0 and 4, 2 and 6, 1 and 3,
    // 5 and 7; out: the sums of outputs 0 to 7, bias added.
    [[gnu::always_inline]] static void transform(const Register (&in)[4], Register bias,
                                                 Register (&out)[8]) {
        using namespace dct;
        const auto sum = [&](int pair, int first, int second) {
            return V::dot16(in[pair], V::all_pairs16(first, second));
        };
        const Register sum04 = V::add32(sum(0, c4, c4), bias);
        const Register difference04 = V::add32(sum(0, c4, -c4), bias);
        const Register sum26 = sum(1, c2, c6), difference26 = sum(1, c6, -c2);
        const Register even[4] = {V::add32(sum04, sum26), V::add32(difference04, difference26),
                                  V::sub32(difference04, difference26), V::sub32(sum04, sum26)};
        const Register odd[4] = {
            V::add32(sum(2, c1, c3), sum(3, c5, c7)), V::add32(sum(2, c3, -c7), sum(3, -c1, -c5)),
            V::add32(sum(2, c5, -c1), sum(3, c7, c3)), V::add32(sum(2, c7, -c5), sum(3, c3, -c1))};
#pragma GCC unroll 4
        for (int i = 0; i < 4; ++i) {
            out[i] = V::add32(even[i], odd[i]);
            out[7 - i] = V::sub32(even[i], odd[i]);
        }
    }

    // Sums of the first pass, one vector for each column, to the pairs of the second.
    [[gnu::always_inline]] static void turn(const Register (&sums)[8], Register (&pairs)[parts][4],
                                            int part) {
        const auto shifted = [](Register sum) {
            return V::template shift_right32_signed<16>(V::template shift_left32<3>(sum));
        };
        Register columns[4]; // two columns each: both pairs of one, then of the other
#pragma GCC unroll 4
        for (int i = 0; i < 4; ++i)
            columns[i] = V::narrow32(shifted(sums[2 * i]), shifted(sums[2 * i + 1]));
        const Register left[2] = {V::even32(columns[0], columns[1]),
                                  V::odd32(columns[0], columns[1])};
        const Register right[2] = {V::even32(columns[2], columns[3]),
                                   V::odd32(columns[2], columns[3])};
#pragma GCC unroll 2
        for (int pair = 0; pair < 2; ++pair) {
            if constexpr (parts == 2) {
                pairs[0][2 * part + pair] = left[pair];
                pairs[1][2 * part + pair] = right[pair];
            } else {
                pairs[0][pair] = V::low_halves(left[pair], right[pair]);
                pairs[0][pair + 2] = V::high_halves(left[pair], right[pair]);
            }
        }
    }

    [[gnu::always_inline]] static void store_rows(const Register (&sums)[parts][8],
                                                  int16_t* samples, ptrdiff_t stride) {
        const auto shifted = [&](int part, int y) {
            return V::template shift_right32_signed<19>(sums[part][y]);
        };
#pragma GCC unroll 8
        for (int y = 0; y < 8; y += rows_at_once)
            store(samples + y * stride, stride,
                  parts == 2
                      ? V::narrow32(shifted(0, y), shifted(parts - 1, y))
                      : V::in_order(V::narrow32(shifted(0, y), shifted(0, y + rows_at_once - 1))));
    }

    // Of the mean alone.
    static void flat(int16_t mean, int16_t* samples, ptrdiff_t stride) {
        const auto row = static_cast<int16_t>(static_cast<uint32_t>(mean * dct::c4) << 3 >> 16);
        const auto level = static_cast<int16_t>((row * dct::c4 + (1 << 18)) >> 19);
#pragma GCC unroll 8
        for (int y = 0; y < 8; y += rows_at_once)
            store(samples + y * stride, stride, V::all16(level));
    }

    // One row of samples, or two.
    static void store(int16_t* to, ptrdiff_t stride, Register rows) {
        if constexpr (rows_at_once == 1)
            V::store(to, rows);
        else
            V::store_halves(to, to + stride, rows);
    }
};

template<typename V>
struct DecodeKernels {
    using Register = typename V::Register;
    using Halves = typename V::Halves;
    using Planes = typename V::Planes;

    // 115999 = 2 * 65536 - 15073, 91881 = 65536 + 26345, 46812 = 65536 - 18724: the high half of a
    // 16 x 16-bit product is what remains after the shift, rounded down.
    static void chroma_terms(const int16_t* cb_row, const int16_t* cr_row, ChromaTerms terms,
                             size_t count) {
        const Register middle = V::all16(128), green_factors = V::all_pairs16(-22525, 18724);
        for (size_t i = 0; i < count; i += V::size / 2) {
            const Register cb = V::load_once(cb_row + i), cr = V::load_once(cr_row + i);
            const Register blue =
                V::add16(V::add16(cb, cb), V::multiply_high16_signed(cb, V::all16(-15073)));
            const Register red = V::add16(cr, V::multiply_high16_signed(cr, V::all16(26345)));
            const auto shifted = [&](Register pairs) {
                return V::template shift_right32_signed<16>(V::dot16(pairs, green_factors));
            };
            const Register green = V::sub16(
                V::narrow32(shifted(V::zip_low16(cb, cr)), shifted(V::zip_high16(cb, cr))), cr);
            V::store(terms.blue + i, V::add16(blue, middle));
            V::store(terms.green + i, V::add16(green, middle));
            V::store(terms.red + i, V::add16(red, middle));
        }
    }

    static void grey(const int16_t* y, uint8_t* bgr, size_t pixels) {
        const Halves middle = {V::all16(128), V::all16(128)};
        write(bgr, pixels, [&](size_t i) -> Planes {
            const Register level = channel(V::load_halves16(y + i), middle);
            return {level, level, level};
        });
    }

    template<bool wide>
    static void coloured(const int16_t* y, ChromaTerms terms, uint8_t* bgr, size_t pixels) {
        write(bgr, pixels, [&](size_t i) -> Planes {
            const int16_t *const low = y + i, *const high = low + V::size / 2;
            const Halves luma =
                wide ? V::load_halves16(low) : Halves{V::load_once(low), V::load_once(high)};
            const auto plane = [&](const int16_t* of) {
                const Register v = wide ? V::load_once(of + i / 2) : V::load(of + i);
                if constexpr (wide)
                    return channel(luma, {V::zip_low16(v, v), V::zip_high16(v, v)});
                else
                    return V::in_order(channel(luma, {v, V::load(of + i + V::size / 2)}));
            };
            return {plane(terms.blue), plane(terms.green), plane(terms.red)};
        });
    }
    static constexpr auto colour = coloured<false>, colour_wide = coloured<true>;

  private:
    static Register channel(const Halves& y, const Halves& terms) {
        return V::narrow16(V::add16(y.low, terms.low), V::add16(y.high, terms.high));
    }

    // Whole steps straight into the row, the last pixels by way of a buffer.
    template<typename Made>
    [[gnu::always_inline]] static void write(uint8_t* bgr, size_t pixels, const Made& made) {
        const size_t rest = pixels % V::size, whole = pixels - rest;
        uint8_t last[3 * V::size];
        uint8_t* to = bgr;
        size_t i = 0;
        for (const size_t end : {whole, pixels}) {
            for (; i < end; i += V::size, to += 3 * V::size)
                V::store_planes(to, made(i));
            to = last;
        }
        std::memcpy(bgr + 3 * whole, last, 3 * rest);
    }
};

} // namespace
} // namespace kirvo
