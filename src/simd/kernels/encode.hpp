// Encoding: pixels to samples, samples to quantised coefficients.
#pragma once

#include "simd/dct.hpp"
#include "simd/kernels/loops.hpp"

namespace kirvo {
namespace {

template<typename V>
struct EncodeKernels {
    using Register = typename V::Register;
    using Halves = typename V::Halves;

    // The luminance less 128; for the chroma 127 less the negated sums, whose weights, unlike 128,
    // are signed bytes.
    static void samples_of(const uint8_t* bgr, size_t pixels, int8_t* y, int8_t* cb, int8_t* cr) {
        size_t i = 0;
        for (; i + V::size <= pixels; i += V::size) {
            const typename V::Weighted channels(V::load_planes(bgr + 3 * i));
            const Halves luma = channels.luminance();
            V::store(y + i, high_bytes({V::add16(luma.low, V::all16(-32640)),
                                        V::add16(luma.high, V::all16(-32640))}));
            V::store(cb + i, high_bytes(negated(channels.template sums<-128, 85, 43>())));
            V::store(cr + i, high_bytes(negated(channels.template sums<21, 107, -128>())));
        }
        scalar::kernels.samples_of(bgr + 3 * i, pixels - i, y + i, cb + i, cr + i);
    }

    static void halve(const int8_t* upper, const int8_t* lower, size_t count, int8_t* half) {
        const auto mean = [&](size_t i) {
            const Register sums = V::add16(V::pair_sums8_signed(V::load(upper + i)),
                                           V::pair_sums8_signed(V::load(lower + i)));
            return V::template shift_right16_signed<2>(V::add16(sums, V::all16(2)));
        };
        for (size_t i = 0; i < count; i += V::size)
            V::store(half + i, V::in_order(V::narrow16_signed(mean(2 * i), mean(2 * i + V::size))));
    }

    static void code_groups(const int8_t* samples, ptrdiff_t stride, size_t groups,
                            const Quantiser& quantiser, BlockGroup* out) {
        for (size_t group = 0; group < groups; ++group, samples += 8 * blocks_abreast)
            for (size_t block = 0; block < blocks_abreast; block += V::blocks)
                code(samples + 8 * block, stride, quantiser, out[group], block);
    }

  private:
    static Register high_bytes(const Halves& sums) {
        return V::narrow16_signed(V::template shift_right16_signed<8>(sums.low),
                                  V::template shift_right16_signed<8>(sums.high));
    }
    static Halves negated(const Halves& sums) {
        return {V::sub16(V::all16(127), sums.low), V::sub16(V::all16(127), sums.high)};
    }

    // The transform and the quantiser over vectors of which each 16 bytes hold a row of a block.
    //
    // Why this is the scalar transform to the bit: samples are 8 bits, so that row results and all sums
    // of theirs (below 8 * 2897) fit 16 bits, and products of pairs can be summed in 32 (pmaddwd). Where
    // one factor is left, the shift by 13 is the high word of (8 * x) * factor. The rounded shift by 19
    // is done as floor(x / 2^16), plus 4, floor of an 8th, which is the same number.
    // Pairs of inputs, word by word.
    struct Pairs {
        Register low, high;
        Pairs(Register first, Register second)
            : low(V::zip_low16(first, second)), high(V::zip_high16(first, second)) {}
    };
    // Every other row of a square, zipped twice; zipped with the others, each vector gives two columns.
    struct Half {
        Pairs low, high;
        template<typename Row>
        [[gnu::always_inline]] static Half from(int first, const Row& row) {
            const Pairs outer(row(first), row(first + 4)), inner(row(first + 2), row(first + 6));
            return {Pairs(outer.low, inner.low), Pairs(outer.high, inner.high)};
        }
    };

    template<bool rows>
    static Register narrow(Register low, Register high) {
        if constexpr (rows)
            return V::narrow32(V::template shift_right32_signed<13>(low),
                               V::template shift_right32_signed<13>(high));
        else
            return rounded_eighth(V::narrow32(V::template shift_right32_signed<16>(low),
                                              V::template shift_right32_signed<16>(high)));
    }
    static Register rounded_eighth(Register x) {
        return V::template shift_right16_signed<3>(V::add16(x, V::all16(4)));
    }

    template<bool rows>
    static Register times_c4(Register x) {
        if constexpr (rows)
            return V::multiply_high16_signed(V::template shift_left16<3>(x), V::all16(dct::c4));
        else
            return rounded_eighth(V::multiply_high16_signed(x, V::all16(dct::c4)));
    }
    template<bool rows>
    static Register sum_of_2(const Pairs& p, int first, int second) {
        const Register factors = V::all_pairs16(first, second);
        return narrow<rows>(V::dot16(p.low, factors), V::dot16(p.high, factors));
    }
    template<bool rows>
    static Register sum_of_4(const Pairs& p, int p1, int p2, const Pairs& q, int q1, int q2) {
        const Register p_factors = V::all_pairs16(p1, p2), q_factors = V::all_pairs16(q1, q2);
        return narrow<rows>(V::add32(V::dot16(p.low, p_factors), V::dot16(q.low, q_factors)),
                            V::add32(V::dot16(p.high, p_factors), V::dot16(q.high, q_factors)));
    }

    // Over the columns of a square, made shortly before their use: 32-bit code has eight vectors.
    template<bool rows>
    static void pass(const Half& a, const Half& b, Register (&x)[8]) {
        using namespace dct;
        const Pairs x01(a.low.low, b.low.low), x67(a.high.high, b.high.high);
        const Register s07 = V::add16(x01.low, x67.high), s16 = V::add16(x01.high, x67.low);
        const Pairs outer(V::sub16(x01.low, x67.high), V::sub16(x01.high, x67.low));
        const Pairs x23(a.low.high, b.low.high), x45(a.high.low, b.high.low);
        const Register s25 = V::add16(x23.low, x45.high), s34 = V::add16(x23.high, x45.low);
        const Pairs inner(V::sub16(x23.low, x45.high), V::sub16(x23.high, x45.low));
        const Register even = V::add16(s07, s34), odd = V::add16(s16, s25);
        const Pairs differences(V::sub16(s07, s34), V::sub16(s16, s25));
        x[0] = times_c4<rows>(V::add16(even, odd));
        x[4] = times_c4<rows>(V::sub16(even, odd));
        x[2] = sum_of_2<rows>(differences, c2, c6);
        x[6] = sum_of_2<rows>(differences, c6, -c2);
        x[1] = sum_of_4<rows>(outer, c1, c3, inner, c5, c7);
        x[3] = sum_of_4<rows>(outer, c3, -c7, inner, -c1, -c5);
        x[5] = sum_of_4<rows>(outer, c5, -c1, inner, c7, c3);
        x[7] = sum_of_4<rows>(outer, c7, -c5, inner, c3, -c1);
    }

    static Register quantise(Register coefficient, const Quantiser& quantiser, int row) {
        const Register biased = V::add16(V::magnitude16(coefficient), V::load(quantiser.bias[row]));
        const Register scaled = V::multiply_high16(biased, V::load(quantiser.reciprocal[row]));
        return V::with_sign16(V::multiply_high16(scaled, V::load(quantiser.scale[row])),
                              coefficient);
    }

    // V::blocks blocks of the group from block on.
    static void code(const int8_t* samples, ptrdiff_t stride, const Quantiser& quantiser,
                     BlockGroup& group, size_t block) {
        Register r[8];
        const auto loaded = [&](int row) { return V::load_block_row(samples + row * stride); };
        const auto kept = [&](int row) { return r[row]; };
        pass<true>(Half::from(0, loaded), Half::from(1, loaded), r);
        pass<false>(Half::from(0, kept), Half::from(1, kept), r);
#pragma GCC unroll 8
        for (int row = 0; row < 8; ++row) {
            r[row] = quantise(r[row], quantiser, row);
            V::store(group.level[row] + 8 * block, r[row]);
        }
        V::scan(r, group.small + block, group.nonzero + block);
    }
};

} // namespace
} // namespace kirvo
