// Extremes and sums of rows, element by element, and means of boxes.
#pragma once

#include "simd/kernels/loops.hpp"

namespace kirvo {
namespace {

// Of numbers of a type, by an operation of vectors. The last step may take elements once more, which
// does not change an extreme.
template<typename V, typename T, auto of, auto rest, auto rest_of_rows>
struct ExtremeKernels {
    using Register = typename V::Register;
    static constexpr size_t in_vector = V::size / sizeof(T);

    static void join(T* to, const T* runs, size_t count, size_t step, size_t run, size_t side) {
        const size_t last = step * (side - run), near = (side - 2 * run + 1) / 2 * step;
        const T *const second = runs + step * run, *const third = second + step * run,
                       *const end = runs + last;
        const auto at = [=](size_t i) { return V::load(runs + i); };
        const auto each = [=](const auto& made) {
            const auto one = [&](size_t i) { V::store(to + i, made(i)); };
            const auto two = [&](size_t i) { one(i), one(i + in_vector); };
            constexpr bool two_pay = sizeof(void*) == 8 && V::size <= 32 && sizeof(T) == 1;
            if (!(two_pay && each_aligned_step<2 * in_vector, sizeof(T)>(to, count, two)) &&
                !each_aligned_step<in_vector, sizeof(T)>(to, count, one))
                (scalar::kernels.*rest)(to, runs, count, step, run, side);
        };
        const auto two = [=](size_t i) { return of(at(i), V::load(end + i)); };
        if (side <= 2 * run)
            return each(two);
        if constexpr (requires { V::shifted(V::zero(), V::zero(), near); }) {
            // Two far apart are joined first. What the pair near them gives is in the next vector.
            const auto pair = [=](size_t i) { return of(at(i), at(i + last - near)); };
            Register next = pair(0);
            size_t next_is = 0;
            return each([&](size_t i) {
                const Register here = i == next_is ? next : pair(i);
                next = pair(next_is = i + in_vector);
                return of(here, V::shifted(here, next, near * sizeof(T)));
            });
        }
        if (side <= 3 * run)
            return each([=](size_t i) { return of(two(i), V::load(second + i)); });
        each([=](size_t i) { return of(two(i), of(V::load(second + i), V::load(third + i))); });
    }

    // All windows share the rows from where the last one begins to where the first one ends.
    template<int windows>
    [[gnu::flatten]] static void pick_rows(T* const* to, const T* const* rows, size_t n,
                                           size_t count) {
        const auto block = [&](size_t i) {
            const auto at = [&](size_t k) { return V::load(rows[k] + i); };
            Register to_shared[windows], shared = at(windows - 1), after = at(n);
            for (size_t k = windows; k < n; ++k)
                shared = of(shared, at(k));
            to_shared[windows - 1] = shared;
#pragma GCC unroll 8
            for (size_t k = windows - 1; k > 0; --k)
                to_shared[k - 1] = of(to_shared[k], at(k - 1));
#pragma GCC unroll 8
            for (size_t k = 0; k < windows; ++k) {
                after = k < 2 ? after : of(after, at(n + k - 1));
                V::store(to[k] + i, k == 0 ? to_shared[0] : of(to_shared[k], after));
            }
            if (to[windows] != nullptr)
                V::store(to[windows] + i, of(after, at(n - 1)));
        };
        if (!each_aligned_step<in_vector, sizeof(T)>(to[0], count, block))
            (scalar::kernels.*rest_of_rows)[windows / 4](to, rows, n, count);
    }
};

template<typename V>
struct SumKernels {
    using Register = typename V::Register;
    using Planes = typename V::Planes;
    using Halves = typename V::Halves;

    static void add_to_sums16(uint16_t* sums, const uint8_t* row, size_t count) {
        size_t i = 0;
        for (; i + V::size <= count; i += V::size) {
            const Register v = V::load(row + i);
            const Halves wide = V::halves_in_order({V::widen_low8(v), V::widen_high8(v)});
            uint16_t *const low = sums + i, *const high = low + V::size / 2;
            V::store(low, V::add16(V::load(low), wide.low));
            V::store(high, V::add16(V::load(high), wide.high));
        }
        scalar::kernels.add_to_sums16(sums + i, row + i, count - i);
    }

    static void add_to_sums32(uint32_t* sums, const uint8_t* row, size_t count) {
        size_t i = 0;
        for (; i + V::words <= count; i += V::words)
            V::store(sums + i, V::add32(V::load(sums + i), V::template load_row<1>(row + i)));
        scalar::kernels.add_to_sums32(sums + i, row + i, count - i);
    }

    // Asks for bytes of the next row of boxes: the processor does not foresee steps from row to row.
    template<size_t bytes>
    [[gnu::always_inline]] static void prefetch(const uint8_t* from) {
#pragma GCC unroll 3
        for (size_t at = 0; at < bytes; at += line_bytes)
            __builtin_prefetch(from + at);
    }

    // The sums of pairs of columns over the rows of a box, of `size` pixels.
    static Planes pairs(const uint8_t* from, ptrdiff_t row_step, size_t rows) {
        Register blue = V::zero(), green = blue, red = blue;
        const ptrdiff_t next = static_cast<ptrdiff_t>(rows) * row_step;
        for (size_t k = 0; k < rows; ++k, from += row_step) {
            prefetch<3 * V::size>(from + next);
            const Planes p = V::load_planes(from);
            blue = V::add16(blue, V::pair_sums8(p.blue));
            green = V::add16(green, V::pair_sums8(p.green));
            red = V::add16(red, V::pair_sums8(p.red));
        }
        return {blue, green, red};
    }

    // The sums of boxes of 2 or 4 columns: half a vector's worth of bytes.
    template<size_t columns>
    static Planes boxes(const uint8_t* from, ptrdiff_t row_step, size_t rows) {
        const Planes first = pairs(from, row_step, rows);
        if constexpr (columns == 2)
            return first;
        const Planes second = pairs(from + 3 * V::size, row_step, rows);
        return {quads(first.blue, second.blue), quads(first.green, second.green),
                quads(first.red, second.red)};
    }
    // The sums of neighbours, of two vectors in order.
    static Register quads(Register first, Register second) {
        const auto sums = [](Register v) { return V::add16(v, V::template shift_right32<16>(v)); };
        return V::low_words(sums(first), sums(second));
    }

    template<size_t columns>
    static void means(uint8_t* to, const uint8_t* from, ptrdiff_t row_step, size_t rows,
                      size_t count, int shift) {
        constexpr size_t half = columns / 2 * 3 * V::size; // bytes of half the boxes
        const auto mean = [&](Register a, Register b) {
            return V::in_order(V::narrow16(V::shift_right16(a, shift), V::shift_right16(b, shift)));
        };
        const auto block = [&](size_t i) {
            const uint8_t* const first = from + 3 * columns * i;
            const Planes low = boxes<columns>(first, row_step, rows);
            const Planes high = boxes<columns>(first + half, row_step, rows);
            V::store_planes(to + 3 * i, {mean(low.blue, high.blue), mean(low.green, high.green),
                                         mean(low.red, high.red)});
        };
        if (!each_step<V::size>(count, block))
            (columns == 2 ? scalar::kernels.means_of_2
                          : scalar::kernels.means_of_4)(to, from, row_step, rows, count, shift);
    }

    // Bytes 0 and 2, and 1 and 3, of each pixel are summed beside each other.
    static void wide_means_of_2(uint8_t* to, const uint8_t* from, ptrdiff_t row_step, size_t rows,
                                size_t count, int shift) {
        const auto block = [&](size_t i) {
            Halves first = {V::zero(), V::zero()}, second = first;
            const uint8_t* row = from + 8 * i;
            const ptrdiff_t next = static_cast<ptrdiff_t>(rows) * row_step;
            for (size_t k = 0; k < rows; ++k, row += row_step) {
                prefetch<2 * V::size>(row + next);
                add_alternate(first, V::load_once(row));
                add_alternate(second, V::load_once(row + V::size));
            }
            const auto mean = [&](Register a, Register b) {
                return V::shift_right16(V::add16(V::even32(a, b), V::odd32(a, b)), shift);
            };
            const Register high = mean(first.high, second.high);
            V::store(to + 4 * i, V::in_order(V::either(mean(first.low, second.low),
                                                       V::template shift_left16<8>(high))));
        };
        if (!each_aligned_step<V::words, 4>(to, count, block))
            scalar::kernels.wide_means_of_2(to, from, row_step, rows, count, shift);
    }
    static void add_alternate(Halves& sums, Register bytes) {
        sums.low = V::add16(sums.low, V::both(bytes, V::all16(0xFF)));
        sums.high = V::add16(sums.high, V::template shift_right16<8>(bytes));
    }
};

} // namespace
} // namespace kirvo
