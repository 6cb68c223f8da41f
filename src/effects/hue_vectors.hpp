// The hue rows over vectors, for each level's Planes.
//
// Whole numbers give what the doubles of the definition give, except that a hue or a part of the
// saturation that comes out whole is one lower for the few ratios listed here, whose quotient in
// doubles falls just short. The differences of channels and the saturation are at most 255, so all
// cases have been compared.
#pragma once

#include "effects/vector_rows.hpp"

namespace kirvo {
namespace {

template<typename V>
struct HueVectors {
    using Vector = typename V::Vector;

    // Degrees, less 360 where red is largest and blue above green.
    static Vector hue(Vector difference, Vector spread, Vector base, Vector negative) {
        const Vector sixtieths = V::multiply16(difference, V::all16(60));
        const Vector degrees = V::quotient16(sixtieths, spread);
        const Vector whole = V::equal16(V::multiply16(degrees, spread), sixtieths);
        // Truncation is towards zero, which is upwards below red only.
        const Vector down = V::but_not(negative, V::either(whole, V::equal16(base, V::all16(0))));
        const Vector away = V::add16(V::sub16(V::differing(degrees, negative), negative), down);
        const Vector hue = V::add16(base, away);
        return V::add16(hue, V::both(whole, V::equal_any16(hue, {62, 70, 85, 123, 245, 246, 247})));
    }

    // (position / 60) * spread.
    static Vector part(Vector position, Vector spread) {
        const Vector part = V::template shift_right16<4>(
            V::multiply_high16(V::multiply16(position, spread), V::all16((1 << 20) / 60 + 1)));
        const Vector pair = V::add16(V::multiply16(position, V::all16(256)), spread);
        constexpr int short_of[] = {21 << 8 | 180, 22 << 8 | 150, 42 << 8 | 90,  42 << 8 | 170,
                                    42 << 8 | 180, 44 << 8 | 75,  44 << 8 | 150, 44 << 8 | 165};
        return V::add16(part, V::equal_any16(pair, short_of));
    }

    // The colour of a sector of the circle, 0 to 5.
    static V colour(Vector sector, Vector part, Vector most, Vector least) {
        const Vector is[] = {at(sector, 0), at(sector, 1), at(sector, 2),
                             at(sector, 3), at(sector, 4), at(sector, 5)};
        const Vector odd = V::either(V::either(is[1], is[3]), is[5]);
        const Vector between = V::select(odd, V::sub8(most, part), V::add8(least, part));
        const auto channel = [&](int most_1, int most_2, int between_1, int between_2) {
            return V::select(V::either(is[most_1], is[most_2]), most,
                             V::select(V::either(is[between_1], is[between_2]), between, least));
        };
        return {channel(3, 4, 2, 5), channel(1, 2, 0, 3), channel(0, 5, 1, 4)};
    }

    struct Position {
        Vector sector, part;
    };
    static Position position(Vector hue, Vector spread) {
        const Vector sector = V::multiply_high16(hue, V::all16(65536 / 60 + 1));
        return {sector, part(V::sub16(hue, V::multiply16(sector, V::all16(60))), spread)};
    }

    static Vector turned(Vector hue, Vector degrees) {
        const Vector sum = V::add16(hue, degrees);
        const Vector circle = V::all16(360);
        const Vector over = V::both(V::greater16(sum, V::all16(359)), circle);
        const Vector under = V::both(V::greater16(V::all16(0), sum), circle);
        return V::add16(V::sub16(sum, over), under);
    }

    static void turn(uint8_t* to, const uint8_t* from, size_t pixels, int32_t degrees) {
        const Vector by = V::all16(degrees);
        each_block<3 * V::pixels>(to, from, 3 * pixels, [&](uint8_t* out, const uint8_t* in) {
            const V p = V::load(in);
            const Vector most = V::max8(V::max8(p.red, p.green), p.blue);
            const Vector least = V::min8(V::min8(p.red, p.green), p.blue);
            const Vector spread = V::sub8(most, least);
            const Vector red_most = V::equal8(most, p.red), green_most = V::equal8(most, p.green);
            // The hue lies from the largest channel towards one of these.
            const Vector after = V::select(red_most, p.green, V::select(green_most, p.blue, p.red));
            const Vector before =
                V::select(red_most, p.blue, V::select(green_most, p.red, p.green));
            const Vector fall = V::sub8_to_0(before, after);
            const Vector difference = V::either(V::sub8_to_0(after, before), fall);
            const Vector rising = V::equal8(fall, V::all8(0));
            const Vector base =
                V::but_not(V::select(green_most, V::all8(120), V::all8(240)), red_most);
            const auto half = [&](Vector difference, Vector spread, Vector base, Vector rising) {
                const Vector divisor =
                    V::add16(spread, V::both(V::equal16(spread, V::all16(0)), V::all16(1)));
                const Vector negative = V::differing(rising, V::all16(-1));
                const Vector h = hue(difference, divisor, base, negative);
                return position(turned(h, by), spread);
            };
            const Position low =
                half(V::low16(difference), V::low16(spread), V::low16(base), V::low_mask16(rising));
            const Position high = half(V::high16(difference), V::high16(spread), V::high16(base),
                                       V::high_mask16(rising));
            colour(V::narrow(low.sector, high.sector), V::narrow(low.part, high.part), most, least)
                .store(out);
        });
    }

    static void set(uint8_t* to, const uint8_t* from, size_t pixels, int32_t hue, bool softer) {
        const Vector sector = V::all8(hue / 60), place = V::all16(hue % 60);
        // Two thirds of 0 to 255.
        const auto soften = [=](Vector spread) {
            return softer ? V::multiply_high16(spread, V::all16(2 * 65536 / 3 + 1)) : spread;
        };
        each_block<3 * V::pixels>(to, from, 3 * pixels, [&](uint8_t* out, const uint8_t* in) {
            const V p = V::load(in);
            const Vector most = V::max8(V::max8(p.red, p.green), p.blue);
            const Vector spread = V::sub8(most, V::min8(V::min8(p.red, p.green), p.blue));
            const Vector low = soften(V::low16(spread)), high = soften(V::high16(spread));
            colour(sector, V::narrow(part(place, low), part(place, high)), most,
                   V::sub8(most, V::narrow(low, high)))
                .store(out);
        });
    }

  private:
    static Vector at(Vector sector, int number) { return V::equal8(sector, V::all8(number)); }
};

} // namespace
} // namespace kirvo
