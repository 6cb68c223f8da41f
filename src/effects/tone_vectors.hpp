// Tone rows that are arithmetic, over vectors, for each level's Planes.
#pragma once

#include "effects/vector_rows.hpp"

namespace kirvo {
namespace {

template<typename V>
struct ToneVectors {
    using Vector = typename V::Vector;

    static void scale(uint8_t* to, const uint8_t* from, size_t bytes, int32_t factor,
                      int32_t offset) {
        const Vector times = V::all16(factor), plus = V::all16(offset);
        // The product is at most 51000, a quarter of it 12750: below 43690, up to which this
        // multiplication is a division by 25.
        const auto half = [&](Vector v) {
            const Vector quarter = V::template shift_right16<2>(V::multiply16(v, times));
            const Vector hundredth = V::template shift_right16<3>(
                V::multiply_high16(quarter, V::all16((1 << 19) / 25 + 1)));
            return V::add16(hundredth, plus);
        };
        each_block<V::pixels>(to, from, bytes, [&](uint8_t* out, const uint8_t* in) {
            const Vector v = V::load_bytes(in);
            V::store_bytes(out, V::narrow(half(V::low16(v)), half(V::high16(v))));
        });
    }

    static void grey(uint8_t* to, const uint8_t* from, size_t pixels) {
        // The sum is at most 65408.
        const auto half = [](Vector blue, Vector green, Vector red) {
            const Vector sum = V::add16(
                V::add16(V::multiply16(red, V::all16(77)), V::multiply16(green, V::all16(150))),
                V::add16(V::multiply16(blue, V::all16(29)), V::all16(128)));
            return V::template shift_right16<8>(sum);
        };
        each_block<3 * V::pixels>(to, from, 3 * pixels, [&](uint8_t* out, const uint8_t* in) {
            const V p = V::load(in);
            const Vector y =
                V::narrow(half(V::low16(p.blue), V::low16(p.green), V::low16(p.red)),
                          half(V::high16(p.blue), V::high16(p.green), V::high16(p.red)));
            V{y, y, y}.store(out);
        });
    }

    static void flip(uint8_t* to, const uint8_t* from, size_t bytes, uint32_t pattern) {
        uint8_t patterns[V::pixels];
        for (size_t i = 0; i < sizeof patterns; i += sizeof pattern)
            std::memcpy(patterns + i, &pattern, sizeof pattern);
        const Vector flipped = V::load_bytes(patterns);
        each_block<V::pixels>(to, from, bytes, [&](uint8_t* out, const uint8_t* in) {
            V::store_bytes(out, V::differing(V::load_bytes(in), flipped));
        });
    }
};

} // namespace
} // namespace kirvo
