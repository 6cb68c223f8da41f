// Neighbourhoods of three rows, and what is made of their results.
#pragma once

#include "simd/kernels/loops.hpp"

namespace kirvo {
namespace {

template<typename V>
struct FilterKernels {
    using Register = typename V::Register;
    using Halves = typename V::Halves;

    static Halves widened(const uint8_t* from) {
        const Register v = V::load_once(from);
        return {V::widen_low8(v), V::widen_high8(v)};
    }
    static Halves sum(const Halves& a, const Halves& b) {
        return {V::add16(a.low, b.low), V::add16(a.high, b.high)};
    }
    static Halves difference(const Halves& a, const Halves& b) {
        return {V::sub16(a.low, b.low), V::sub16(a.high, b.high)};
    }
    static Halves product(const Halves& a, Register factors) {
        return {V::multiply16(a.low, factors), V::multiply16(a.high, factors)};
    }

    // Sums of the bytes at four places, times a weight.
    template<int weight>
    static Halves weighted(const uint8_t* a, const uint8_t* b, const uint8_t* c, const uint8_t* d) {
        if constexpr (requires { V::dot8(V::zero(), V::zero()); }) {
            const auto pair = [by = V::opaque(V::all8(weight))](Register v, Register w) {
                return Halves{V::dot8(V::zip_low8(v, w), by), V::dot8(V::zip_high8(v, w), by)};
            };
            return sum(pair(V::load_once(a), V::load_once(b)),
                       pair(V::load_once(c), V::load_once(d)));
        } else {
            const Halves all = sum(sum(widened(a), widened(b)), sum(widened(c), widened(d)));
            return weight == 1 ? all : product(all, V::opaque(V::all16(weight)));
        }
    }

    // Sums stay below 2^16: the weights add up to 245.
    static void blur(uint8_t* to, ThreeRows rows, size_t bytes) {
        const uint8_t *below = rows[0], *row = rows[1], *above = rows[2];
        const Register of_centre = V::opaque(V::all16(81));
        const auto block = [&](size_t i) {
            const uint8_t *const b = below + i, *const r = row + i, *const a = above + i;
            const Halves corners = weighted<11>(b - 3, a - 3, b + 3, a + 3);
            const Halves edges = weighted<30>(b, a, r - 3, r + 3);
            const Halves all = sum(sum(corners, edges), product(widened(row + i), of_centre));
            V::store(to + i, V::narrow16(V::template shift_right16<8>(all.low),
                                         V::template shift_right16<8>(all.high)));
        };
        if (!each_step<V::size>(bytes, block))
            scalar::kernels.blur(to, rows, bytes);
    }

    // The neighbours of the bytes at i in the order of the weights, and zeros beyond them.
    struct Neighbours {
        const uint8_t *below, *row, *above;

        explicit Neighbours(ThreeRows rows) : below(rows[0]), row(rows[1]), above(rows[2]) {}
        Halves at(size_t i, size_t k) const {
            const uint8_t* const of = k < 3 ? below : k < 6 ? row : above;
            return k < 9 ? widened(of + i + 3 * (k % 3) - 3) : Halves{V::zero(), V::zero()};
        }
    };

    static void convolve16(uint8_t* to, ThreeRows rows, size_t bytes, const Convolution& by) {
        Register weight[9];
        for (int k = 0; k < 9; ++k)
            weight[k] = V::all16(by.weight[k]);
        const Neighbours neighbours(rows);
        const Register multiplier = V::all16(static_cast<int>(by.multiplier));
        const bool divides = by.divides;
        const int shift = by.shift - 16;
        // Of values from 0 on.
        const auto quotient = [&](Register value) {
            return divides ? V::shift_right16(V::multiply_high16(value, multiplier), shift) : value;
        };
        const auto block = [&](size_t i) {
            Halves all = {V::zero(), V::zero()};
#pragma GCC unroll 9
            for (size_t k = 0; k < 9; ++k) {
                const Halves v = neighbours.at(i, k);
                all = sum(all, product(v, weight[k]));
            }
            V::store(to + i, V::narrow16(quotient(V::max16(all.low, V::zero())),
                                         quotient(V::max16(all.high, V::zero()))));
        };
        if (!each_step<V::size>(bytes, block))
            scalar::kernels.convolve16(to, rows, bytes, by);
    }

    // Neighbours are multiplied in pairs, the last one beside 0. A power of two divides by a shift.
    static void convolve32(uint8_t* to, ThreeRows rows, size_t bytes, const Convolution& by) {
        Register weights[5];
        for (int k = 0; k < 5; ++k)
            weights[k] = V::all_pairs16(by.weight[2 * k], k < 4 ? by.weight[2 * k + 1] : 0);
        const Neighbours neighbours(rows);
        const uint32_t multiplier = by.multiplier;
        const bool shifts = !by.divides || multiplier == uint32_t{1} << 31;
        const int shift = !by.divides ? 0 : shifts ? by.shift - 31 : by.shift;
        const typename V::Count places(static_cast<uint32_t>(shift));
        const auto quotient = [&](Register sum) {
            const Register value = V::but_not(sum, V::template shift_right32_signed<31>(sum));
            return shifts ? V::shift_right32(value, places) : V::scaled32(value, multiplier, shift);
        };
        const auto block = [&](size_t i) {
            Register sums[4] = {V::zero(), V::zero(), V::zero(), V::zero()};
#pragma GCC unroll 5
            for (size_t k = 0; k < 5; ++k) {
                const Halves a = neighbours.at(i, 2 * k), b = neighbours.at(i, 2 * k + 1);
                const Register pairs[] = {V::zip_low16(a.low, b.low), V::zip_high16(a.low, b.low),
                                          V::zip_low16(a.high, b.high),
                                          V::zip_high16(a.high, b.high)};
#pragma GCC unroll 4
                for (int part = 0; part < 4; ++part)
                    sums[part] = V::add32(sums[part], V::dot16(pairs[part], weights[k]));
            }
            V::store(to + i, V::narrow16(V::narrow32(quotient(sums[0]), quotient(sums[1])),
                                         V::narrow32(quotient(sums[2]), quotient(sums[3]))));
        };
        if (!each_step<V::size>(bytes, block))
            scalar::kernels.convolve32(to, rows, bytes, by);
    }

    // Stores 16-bit numbers that were widened from bytes in order.
    static void store16(int16_t* to, const Halves& v) {
        const Halves ordered = V::halves_in_order(v);
        V::store(to, ordered.low);
        V::store(to + V::size / 2, ordered.high);
    }

    static void laplacian(int16_t* to, ThreeRows rows, size_t count) {
        const uint8_t *below = rows[0], *row = rows[1], *above = rows[2];
        const auto block = [&](size_t i) {
            const Halves around = weighted<1>(below + i, above + i, row + i - 1, row + i + 1);
            store16(to + i, difference(product(widened(row + i), V::all16(4)), around));
        };
        if (!each_step<V::size>(count, block))
            scalar::kernels.laplacian(to, rows, count);
    }

    static void gradient(int16_t* to, ThreeRows rows, size_t count) {
        const uint8_t *below = rows[0], *row = rows[1], *above = rows[2];
        const auto block = [&](size_t i) {
            const Halves corners = difference(widened(above + i + 1), widened(below + i - 1));
            const Halves right = sum(sum(corners, corners), widened(row + i + 1));
            const Halves both = difference(right, widened(row + i - 1));
            store16(to + i, difference(sum(both, widened(above + i)), widened(below + i)));
        };
        if (!each_step<V::size>(count, block))
            scalar::kernels.gradient(to, rows, count);
    }

    // Results of 16-bit numbers, made one vector at a time, narrowed to bytes.
    template<typename Made>
    static bool narrowed(uint8_t* to, const int16_t* v, size_t count, const Made& made) {
        return each_step<V::size>(count, [&](size_t i) {
            const Halves halves = V::load_halves16(v + i);
            V::store(to + i, V::narrow16(made(halves.low), made(halves.high)));
        });
    }

    // The Laplacian is at most 1020 in magnitude, for which this multiplication is a division by 6.
    static void correction(uint8_t* plus, uint8_t* minus, const int16_t* laplacian, size_t count,
                           int divisor) {
        const Register reciprocal = V::all16(65536 / divisor + (divisor == 6));
        const auto block = [&](size_t i) {
            const Halves v = V::load_halves16(laplacian + i);
            const auto parts = [&](auto sign) {
                const auto part = [&](Register slope) {
                    return V::multiply_high16(V::max16(sign(slope), V::zero()), reciprocal);
                };
                return V::narrow16(part(v.low), part(v.high));
            };
            V::store(plus + i, parts([](Register slope) { return slope; }));
            V::store(minus + i, parts([](Register slope) { return V::sub16(V::zero(), slope); }));
        };
        if (!each_step<V::size>(count, block))
            scalar::kernels.correction(plus, minus, laplacian, count, divisor);
    }

    static void dark_edges(uint8_t* to, const int16_t* v, size_t count, int16_t low, int16_t high) {
        const Register lowest = V::all16(low), highest = V::all16(high);
        const auto darkness = [&](Register slope) {
            const Register clamped = V::min16(V::max16(slope, lowest), highest);
            return V::sub16(V::all16(255), V::magnitude16(clamped));
        };
        if (!narrowed(to, v, count, darkness))
            scalar::kernels.dark_edges(to, v, count, low, high);
    }

    static void relief(uint8_t* to, const int16_t* v, size_t count) {
        const auto height = [](Register slope) {
            const Register clamped = V::min16(V::max16(slope, V::all16(-127)), V::all16(127));
            return V::add16(clamped, V::all16(128));
        };
        if (!narrowed(to, v, count, height))
            scalar::kernels.relief(to, v, count);
    }

    static void between(uint8_t* to, const int16_t* v, size_t count, int16_t low, int16_t high) {
        const Register lowest = V::all16(low), highest = V::all16(high);
        const auto passes = [&](Register slope) {
            const Register is_high = V::equal16(V::max16(slope, lowest), slope);
            const Register is_low = V::equal16(V::min16(slope, highest), slope);
            return V::template shift_right16<8>(V::both(is_high, is_low));
        };
        if (!narrowed(to, v, count, passes))
            scalar::kernels.between(to, v, count, low, high);
    }
};

} // namespace
} // namespace kirvo
