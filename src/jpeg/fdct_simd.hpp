// The forward transform and the quantiser over vectors whose 128-bit lanes hold a block each. V is a
// type of the including instruction set, so that nothing here is shared between two of them.
//
// Why this is the scalar transform to the bit: samples are 8 bits, so that row results and all sums
// of theirs (below 8 * 2897) fit 16 bits, and products of pairs can be summed in 32 (pmaddwd). Where
// one factor is left, the shift by 13 is the high word of (8 * x) * factor. The rounded shift by 19
// is done as floor(x / 2^16), plus 4, floor of an 8th, which is the same number.
#pragma once

#include "jpeg/encode_rows.hpp"

namespace kirvo {

template <typename V>
struct SimdTransform {
    using R = typename V::R;

    static constexpr int16_t c1 = 32137, c2 = 30272, c3 = 27244, c4 = 23169, c5 = 18204,
                             c6 = 12539, c7 = 6392;

    static void transpose(R (&r)[8]) {
        R a[8], b[8];
        for (int i = 0; i < 4; ++i) {
            a[2 * i] = V::low16(r[2 * i], r[2 * i + 1]);
            a[2 * i + 1] = V::high16(r[2 * i], r[2 * i + 1]);
        }
        for (int i = 0; i < 8; i += 4) {
            b[i] = V::low32(a[i], a[i + 2]);
            b[i + 1] = V::high32(a[i], a[i + 2]);
            b[i + 2] = V::low32(a[i + 1], a[i + 3]);
            b[i + 3] = V::high32(a[i + 1], a[i + 3]);
        }
        for (int i = 0; i < 4; ++i) {
            r[2 * i] = V::low64(b[i], b[i + 4]);
            r[2 * i + 1] = V::high64(b[i], b[i + 4]);
        }
    }

    // Pairs of inputs, word by word.
    struct Pairs {
        R low, high;
        Pairs(R first, R second) : low(V::low16(first, second)), high(V::high16(first, second)) {}
    };

    template <bool rows>
    static R narrow(R low, R high) {
        if constexpr (rows)
            return V::pack32(V::template shift_right32<13>(low),
                             V::template shift_right32<13>(high));
        else
            return rounded_eighth(V::pack32(V::template shift_right32<16>(low),
                                            V::template shift_right32<16>(high)));
    }
    static R rounded_eighth(R x) { return V::template shift_right16<3>(V::add16(x, V::set16(4))); }

    template <bool rows>
    static R times_c4(R x) {
        if constexpr (rows)
            return V::mul_high(V::template shift_left16<3>(x), V::set16(c4));
        else
            return rounded_eighth(V::mul_high(x, V::set16(c4)));
    }
    template <bool rows>
    static R sum_of_2(const Pairs& p, int16_t first, int16_t second) {
        const R factors = V::set_pair(first, second);
        return narrow<rows>(V::madd(p.low, factors), V::madd(p.high, factors));
    }
    template <bool rows>
    static R sum_of_4(const Pairs& p, int16_t p1, int16_t p2, const Pairs& q, int16_t q1,
                      int16_t q2) {
        const R p_factors = V::set_pair(p1, p2), q_factors = V::set_pair(q1, q2);
        return narrow<rows>(V::add32(V::madd(p.low, p_factors), V::madd(q.low, q_factors)),
                            V::add32(V::madd(p.high, p_factors), V::madd(q.high, q_factors)));
    }

    // Eight points, one in each register.
    template <bool rows>
    static void pass(R (&x)[8]) {
        const R s07 = V::add16(x[0], x[7]), s16 = V::add16(x[1], x[6]),
                s25 = V::add16(x[2], x[5]), s34 = V::add16(x[3], x[4]);
        const Pairs outer(V::sub16(x[0], x[7]), V::sub16(x[1], x[6]));
        const Pairs inner(V::sub16(x[2], x[5]), V::sub16(x[3], x[4]));
        const R even = V::add16(s07, s34), odd = V::add16(s16, s25);
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

    static R quantise(R coefficient, const Quantiser& quantiser, int row) {
        const R biased = V::add16(V::magnitude(coefficient),
                                  V::load(quantiser.bias[row]));
        const R scaled = V::mul_high_unsigned(biased, V::load(quantiser.reciprocal[row]));
        return V::with_sign(V::mul_high_unsigned(scaled, V::load(quantiser.scale[row])),
                            coefficient);
    }

    // V::lanes blocks of the group from block on; their levels are left in r, a row in each.
    static void code(const int8_t* samples, ptrdiff_t stride, const Quantiser& quantiser,
                     BlockGroup& group, int block, R (&r)[8]) {
        for (int row = 0; row < 8; ++row)
            r[row] = V::widen(samples + row * stride + 8 * block);
        transpose(r);
        pass<true>(r);
        transpose(r);
        pass<false>(r);
        for (int row = 0; row < 8; ++row) {
            r[row] = quantise(r[row], quantiser, row);
            V::store(group.level[row] + 8 * block, r[row]);
        }
    }
};

} // namespace kirvo
