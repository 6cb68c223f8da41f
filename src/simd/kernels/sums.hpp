// Extremes and sums of rows, element by element, and means of boxes.
#pragma once

#include "simd/kernels/loops.hpp"

namespace kirvo {
namespace {

// The larger or the smaller of two numbers of a type, by vectors and alone.
template<typename V, typename T, auto by_vectors, bool larger>
struct Choice {
    using Element = T;
    using Register = typename V::Register;
    static Register of(Register a, Register b) { return by_vectors(a, b); }
    static Element of(Element a, Element b) { return (a > b) == larger ? a : b; }
};
template<typename V>
using Highest8 = Choice<V, uint8_t, V::max8, true>;
template<typename V>
using Lowest8 = Choice<V, uint8_t, V::min8, false>;
template<typename V>
using Highest16 = Choice<V, uint16_t, V::max16_unsigned, true>;
template<typename V>
using HighestSmall32 = Choice<V, uint32_t, V::max32, true>; // of numbers below 2^31

template<typename V, template<typename> typename Which>
struct ExtremeKernels {
    using Register = typename V::Register;
    using Pick = Which<V>;
    using Element = typename Pick::Element;
    static constexpr size_t step = V::size / sizeof(Element);

    // Calls block with the number of an element, for a vector, or for single ones where there are
    // fewer. The last vector may take elements once more, which does not change an extreme.
    template<typename Block>
    static void each(size_t count, const Block& block) {
        size_t i = 0;
        for (; i + step <= count; i += step)
            block(i, Register{});
        if (i == count)
            return;
        if (i != 0)
            return block(count - step, Register{});
        for (; i < count; ++i)
            block(i, Element{});
    }
    static Register load(const Element* from, Register) { return V::load(from); }
    static Element load(const Element* from, Element) { return *from; }
    static void store(Element* to, Register v) { V::store(to, v); }
    static void store(Element* to, Element v) { *to = v; }

    static void pick(Element* to, const Element* a, const Element* b, size_t count) {
        each(count, [&](size_t i, auto kind) {
            store(to + i, Pick::of(load(a + i, kind), load(b + i, kind)));
        });
    }
    static void pick_two(Element* to, Element* running, const Element* row, const Element* other,
                         size_t count) {
        each(count, [&](size_t i, auto kind) {
            const auto now = Pick::of(load(running + i, kind), load(row + i, kind));
            store(running + i, now);
            store(to + i, Pick::of(now, load(other + i, kind)));
        });
    }
    static void pick_four(Element* to, const Element* a, const Element* b, const Element* c,
                          const Element* d, size_t count) {
        each(count, [&](size_t i, auto kind) {
            store(to + i, Pick::of(Pick::of(load(a + i, kind), load(b + i, kind)),
                                   Pick::of(load(c + i, kind), load(d + i, kind))));
        });
    }
};

template<typename V>
struct SumKernels {
    using Register = typename V::Register;
    using Planes = typename V::Planes;
    using Halves = typename V::Halves;

    static Halves widened(Register bytes) {
        return V::halves_in_order({V::widen_low8(bytes), V::widen_high8(bytes)});
    }
    static void add_to_sums16(uint16_t* sums, const uint8_t* row, size_t count) {
        size_t i = 0;
        for (; i + V::size <= count; i += V::size) {
            const Halves wide = widened(V::load(row + i));
            uint16_t *const low = sums + i, *const high = low + V::size / 2;
            V::store(low, V::add16(V::load(low), wide.low));
            V::store(high, V::add16(V::load(high), wide.high));
        }
        scalar::kernels.add_to_sums16(sums + i, row + i, count - i);
    }

    static void add_to_sums32(uint32_t* sums, const uint8_t* row, size_t count) {
        constexpr size_t step = V::words;
        size_t i = 0;
        for (; i + step <= count; i += step)
            V::store(sums + i, V::add32(V::load(sums + i), V::template load_row<1>(row + i)));
        scalar::kernels.add_to_sums32(sums + i, row + i, count - i);
    }

    // The sums of pairs of columns over the rows of a box, of `size` pixels.
    struct Pairs {
        Register blue, green, red;
    };
    static Pairs pairs(const uint8_t* from, ptrdiff_t row_step, size_t rows) {
        Pairs sums = {V::zero(), V::zero(), V::zero()};
        for (size_t k = 0; k < rows; ++k, from += row_step) {
            const Planes p = V::load_planes(from);
            sums.blue = V::add16(sums.blue, V::pair_sums8(p.blue));
            sums.green = V::add16(sums.green, V::pair_sums8(p.green));
            sums.red = V::add16(sums.red, V::pair_sums8(p.red));
        }
        return sums;
    }

    // The sums of boxes of 2 or 4 columns: half a vector's worth of bytes.
    template<size_t columns>
    static Pairs boxes(const uint8_t* from, ptrdiff_t row_step, size_t rows) {
        const Pairs first = pairs(from, row_step, rows);
        if constexpr (columns == 2)
            return first;
        const Pairs second = pairs(from + 3 * V::size, row_step, rows);
        return {quads(first.blue, second.blue), quads(first.green, second.green),
                quads(first.red, second.red)};
    }
    // The sums of neighbours, of two vectors in order.
    static Register quads(Register first, Register second) {
        const auto sums = [](Register v) { return V::add16(v, V::template shift_right32<16>(v)); };
        return V::in_order(V::low_words(sums(first), sums(second)));
    }

    template<size_t columns>
    static void means(uint8_t* to, const uint8_t* from, ptrdiff_t row_step, size_t rows,
                      size_t count, int shift) {
        constexpr size_t half = columns / 2 * 3 * V::size; // bytes of half the boxes
        const auto mean = [&](Register low, Register high) {
            return V::in_order(
                V::narrow16(V::shift_right16(low, shift), V::shift_right16(high, shift)));
        };
        const auto block = [&](size_t i) {
            const uint8_t* const first = from + 3 * columns * i;
            const Pairs low = boxes<columns>(first, row_step, rows);
            const Pairs high = boxes<columns>(first + half, row_step, rows);
            V::store_planes(to + 3 * i, {mean(low.blue, high.blue), mean(low.green, high.green),
                                         mean(low.red, high.red)});
        };
        if (!each_step<V::size>(count, block))
            (columns == 2 ? scalar::kernels.means_of_2
                          : scalar::kernels.means_of_4)(to, from, row_step, rows, count, shift);
    }
};

} // namespace
} // namespace kirvo
