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

    // Degrees, less 360 where red is largest and blue above green. The spread is not 0; where the
    // difference counts downwards, negative is -1.
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

    struct Position {
        Vector sector, within; // within: 0 to 59
    };
    static Position position(Vector hue) {
        const Vector sector = V::multiply_high16(hue, V::all16(65536 / 60 + 1));
        return {sector, V::sub16(hue, V::multiply16(sector, V::all16(60)))};
    }

    // within * spread / 60.
    static Vector part16(Vector within, Vector spread) {
        return V::template shift_right16<4>(
            V::multiply_high16(V::multiply16(within, spread), V::all16((1 << 20) / 60 + 1)));
    }
    // -1 where that falls short.
    static Vector short8(Vector within, Vector spread) {
        const auto at = [&](int value) { return V::equal8(within, V::all8(value)); };
        const auto of = [&](int value) { return V::equal8(spread, V::all8(value)); };
        const Vector of_150 = of(150), of_180 = of(180);
        const Vector at_42 = V::both(at(42), V::either(V::either(of(90), of(170)), of_180));
        const Vector at_44 = V::both(at(44), V::either(V::either(of(75), of(165)), of_150));
        return V::either(V::either(V::both(at(21), of_180), V::both(at(22), of_150)),
                         V::either(at_42, at_44));
    }

    // The colour of a sector of the circle, 0 to 5.
    static V colour(Vector sector, Vector part, Vector most, Vector least) {
        const auto at = [&](int number) { return V::equal8(sector, V::all8(number)); };
        const Vector is[] = {at(0), at(1), at(2), at(3), at(4), at(5)};
        const Vector odd = V::either(V::either(is[1], is[3]), is[5]);
        const Vector between = V::select(odd, V::sub8(most, part), V::add8(least, part));
        const auto channel = [&](int most_1, int most_2, int between_1, int between_2) {
            return V::select(V::either(is[most_1], is[most_2]), most,
                             V::select(V::either(is[between_1], is[between_2]), between, least));
        };
        return {channel(3, 4, 2, 5), channel(1, 2, 0, 3), channel(0, 5, 1, 4)};
    }

    // Colours taken apart. Hues are 16-bit numbers, in two halves; saturation is most less least.
    struct Parts {
        Vector low_hue, high_hue;
        Vector most, least;

        Vector saturation() const { return V::sub8(most, least); }
    };

    // The hues turned by 0 to 359 degrees.
    static Parts parts(const V& p, int32_t degrees) {
        // Hues are at least -60: so no sum is negative, and none reaches twice the circle.
        const Vector by = V::all16(degrees < 60 ? degrees + 360 : degrees);
        const Vector most = V::max8(V::max8(p.red, p.green), p.blue);
        const Vector least = V::min8(V::min8(p.red, p.green), p.blue);
        const Vector red_most = V::equal8(most, p.red), green_most = V::equal8(most, p.green);
        // The hue lies from the largest channel towards one of these.
        const Vector after = V::select(red_most, p.green, V::select(green_most, p.blue, p.red));
        const Vector before = V::select(red_most, p.blue, V::select(green_most, p.red, p.green));
        const Vector fall = V::sub8_to_0(before, after);
        const Vector difference = V::either(V::sub8_to_0(after, before), fall);
        const Vector rising = V::equal8(fall, V::all8(0));
        const Vector base = V::but_not(V::select(green_most, V::all8(120), V::all8(240)), red_most);
        const Vector divisor = V::max8(V::sub8(most, least), V::all8(1));
        const auto turned = [&](Vector difference, Vector divisor, Vector base, Vector rising) {
            const Vector negative = V::differing(rising, V::all16(-1));
            const Vector sum = V::add16(hue(difference, divisor, base, negative), by);
            return V::unsigned_min16(sum, V::sub16(sum, V::all16(360)));
        };
        return {
            turned(V::low16(difference), V::low16(divisor), V::low16(base), V::low_mask16(rising)),
            turned(V::high16(difference), V::high16(divisor), V::high16(base),
                   V::high_mask16(rising)),
            most, least};
    }

    static V colour(const Parts& p) {
        const Vector spread = p.saturation();
        const Position low = position(p.low_hue), high = position(p.high_hue);
        const Vector part =
            V::narrow(part16(low.within, V::low16(spread)), part16(high.within, V::high16(spread)));
        const Vector short_of = short8(V::narrow(low.within, high.within), spread);
        return colour(V::narrow(low.sector, high.sector), V::add8(part, short_of), p.most, p.least);
    }

    static void turn(uint8_t* to, const uint8_t* from, size_t pixels, int32_t degrees) {
        each_block<3 * V::pixels>(to, from, 3 * pixels, [&](uint8_t* out, const uint8_t* in) {
            colour(parts(V::load(in), degrees)).store(out);
        });
    }

    static void set(uint8_t* to, const uint8_t* from, size_t pixels, int32_t hue, bool softer) {
        const Vector sector = V::all8(hue / 60);
        const Vector within8 = V::all8(hue % 60), within16 = V::all16(hue % 60);
        // Two thirds of 0 to 255.
        const auto soften = [=](Vector spread) {
            return softer ? V::multiply_high16(spread, V::all16(2 * 65536 / 3 + 1)) : spread;
        };
        each_block<3 * V::pixels>(to, from, 3 * pixels, [&](uint8_t* out, const uint8_t* in) {
            const V p = V::load(in);
            const Vector most = V::max8(V::max8(p.red, p.green), p.blue);
            const Vector full = V::sub8(most, V::min8(V::min8(p.red, p.green), p.blue));
            const Vector low = soften(V::low16(full)), high = soften(V::high16(full));
            const Vector spread = V::narrow(low, high);
            const Vector part = V::narrow(part16(within16, low), part16(within16, high));
            colour(sector, V::add8(part, short8(within8, spread)), most, V::sub8(most, spread))
                .store(out);
        });
    }
};

} // namespace
} // namespace kirvo
