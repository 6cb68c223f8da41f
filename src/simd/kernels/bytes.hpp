// Rows of bytes, whatever they stand for.
#pragma once

#include "simd/kernels/loops.hpp"

#include <bit>

namespace kirvo {
namespace {

template<typename V>
struct ByteKernels {
    using Register = typename V::Register;

    // Stores at(phase)(i) at every offset i, where phase is i but for whole vectors. `to` may be the
    // source: the first and the last vector, which overlap others, are made before those are stored,
    // but the last no sooner, since its memory comes late. All others are aligned; two steps at once
    // make up to 20 %. False where there are fewer bytes than a vector has: nothing is done.
    template<typename F>
    [[gnu::always_inline]] static bool each_vector(uint8_t* to, size_t bytes, const F& at) {
        if (bytes < V::size)
            return false;
        const size_t end = bytes - V::size;
        const Register first = at(0)(0);
        size_t i = -reinterpret_cast<uintptr_t>(to) % V::size;
        const auto made = at(i);
#pragma GCC unroll 2
        for (; i + V::size <= end; i += V::size)
            V::store(to + i, made(i));
        const Register last = at(end)(end);
        if (i < end)
            V::store(to + i, made(i));
        V::store(to, first);
        V::store(to + end, last);
        return true;
    }

    // A pattern of 4 bytes as it lies from an offset on.
    static Register repeated(uint32_t pattern, size_t phase) {
        return V::all32(static_cast<int>(std::rotr(pattern, static_cast<int>(phase % 4 * 8))));
    }

    // Stores combine(to, from, pattern).
    template<auto combine, Kernels::WithPattern Kernels::*few>
    static void with_pattern(uint8_t* to, const uint8_t* from, size_t bytes, uint32_t pattern) {
        const auto at = [&](size_t phase) {
            return [=, part = repeated(pattern, phase)](size_t i) {
                return combine(to + i, V::load(from + i), part);
            };
        };
        if (!each_vector(to, bytes, at))
            (scalar::kernels.*few)(to, from, bytes, pattern);
    }
    template<Register blend(Register, Register)>
    static Register blended(const uint8_t* to, Register from, Register kept) {
        return V::both(blend(V::load(to), from), kept);
    }
    template<Register change(Register, Register)>
    static Register changed(const uint8_t*, Register from, Register pattern) {
        return change(from, pattern);
    }
    // The average of the processor rounds up.
    static Register rounded_down(Register a, Register b) {
        return V::sub8(V::average8(a, b), V::both(V::differing(a, b), V::all8(1)));
    }
    static constexpr auto add = with_pattern<blended<V::add8_to_255>, &Kernels::add>;
    static constexpr auto average = with_pattern<blended<rounded_down>, &Kernels::average>;
    static constexpr auto subtract = with_pattern<blended<V::sub8_to_0>, &Kernels::subtract>;
    static constexpr auto invert = with_pattern<changed<V::differing>, &Kernels::invert>;
    static constexpr auto keep_bits = with_pattern<changed<V::both>, &Kernels::keep_bits>;

    static void scale(uint8_t* to, const uint8_t* from, size_t bytes, int32_t factor,
                      int32_t offset) {
        const Register times = V::all16(factor), plus = V::all16(offset);
        // The product is at most 51000, a quarter of it 12750: below 43690, up to which this
        // multiplication is a division by 25.
        const auto half = [=](Register v) {
            const Register quarter = V::template shift_right16<2>(V::multiply16(v, times));
            const Register hundredth = V::template shift_right16<3>(
                V::multiply_high16(quarter, V::all16((1 << 19) / 25 + 1)));
            return V::add16(hundredth, plus);
        };
        const auto scaled = [=](size_t i) {
            const Register v = V::load(from + i);
            return V::narrow16(half(V::widen_low8(v)), half(V::widen_high8(v)));
        };
        if (!each_vector(to, bytes, [&](size_t) { return scaled; }))
            scalar::kernels.scale(to, from, bytes, factor, offset);
    }

    static void map(uint8_t* to, const uint8_t* from, size_t bytes, const Levels& levels) {
        if constexpr (V::has_table) {
            const typename V::Table table(levels);
            const auto mapped = [&](size_t i) { return table[V::load(from + i)]; };
            if (each_vector(to, bytes, [&](size_t) { return mapped; }))
                return;
        }
        scalar::kernels.map(to, from, bytes, levels);
    }

    // One of plus and minus is 0, so that the order of the two does not matter.
    static void correct(uint8_t* to, const uint8_t* from, const uint8_t* plus, const uint8_t* minus,
                        size_t bytes) {
        const auto block = [&](size_t i) {
            const Register more = V::add8_to_255(V::load(from + i), V::load(plus + i));
            V::store(to + i, V::sub8_to_0(more, V::load(minus + i)));
        };
        if (!each_step<V::size>(bytes, block))
            scalar::kernels.correct(to, from, plus, minus, bytes);
    }

    static void triple(uint8_t* to, const uint8_t* from, size_t count) {
        const auto block = [&](size_t i) {
            const Register v = V::load(from + i);
            V::store_planes(to + 3 * i, {v, v, v});
        };
        if (!each_step<V::size>(count, block))
            scalar::kernels.triple(to, from, count);
    }

    // Lines of the cache that are written in part go through it.
    static void copy_past_caches(uint8_t* to, const uint8_t* from, size_t bytes) {
        const size_t to_line = elements_to_line<1>(to), head = bytes < to_line ? bytes : to_line;
        const size_t end = bytes - (bytes - head) % line_bytes;
        std::memcpy(to, from, head);
        for (size_t line = head; line < end; line += line_bytes)
#pragma GCC unroll 4
            for (size_t at = line; at < line + line_bytes; at += V::size)
                V::stream(to + at, V::load(from + at));
        std::memcpy(to + end, from + end, bytes - end);
        V::end_stream();
    }
};

} // namespace
} // namespace kirvo
