// Hues of 24-bit pixels set and turned; pixels kept where their values lie in bands.
//
// The definition divides in doubles and truncates. Whole numbers give the same, except where a
// quotient that should come out whole falls just short of it in doubles. The differences of channels
// and the saturation are at most 255, so all cases have been compared: the ones that fall short are
// listed here.
#pragma once

#include "simd/kernels/loops.hpp"

namespace kirvo {
namespace {

// The hues, in degrees, whose whole quotients give one degree less.
constexpr int short_hues[] = {62, 70, 85, 123, 245, 246, 247};

// The parts of a spread, within * spread / 60, whose whole quotients give 1 less.
struct ShortPart {
    int within, spread;
};
constexpr ShortPart short_parts[] = {{21, 180}, {22, 150}, {42, 90},  {42, 170},
                                     {42, 180}, {44, 75},  {44, 150}, {44, 165}};

template<typename V>
struct HueKernels {
    using Register = typename V::Register;
    using Planes = typename V::Planes;

    static Register is_short(Register hue) {
        Register found = V::zero();
#pragma GCC unroll 8
        for (int degrees : short_hues)
            found = V::either(found, V::equal8(hue, V::all8(degrees)));
        return found;
    }

    // Degrees, less 360 where red is largest and blue above green.
    struct Hue {
        Register degrees, whole; // before it is told whether a whole quotient falls short
    };
    // The spread is not 0; where the difference counts downwards, negative is -1.
    static Hue hue(Register difference, Register spread, Register base, Register negative) {
        const Register sixtieths = V::multiply16(difference, V::all16(60));
        const Register degrees = V::quotient16(sixtieths, spread);
        const Register whole = V::equal16(V::multiply16(degrees, spread), sixtieths);
        // Truncation is towards zero, which is upwards below red only.
        const Register down = V::but_not(negative, V::either(whole, V::equal16(base, V::all16(0))));
        const Register away = V::add16(V::sub16(V::differing(degrees, negative), negative), down);
        return {V::add16(base, away), whole};
    }

    struct Position {
        Register sector, within; // within: 0 to 59
    };
    static Position position(Register hue) {
        const Register sector = V::multiply_high16(hue, V::all16(65536 / 60 + 1));
        return {sector, V::sub16(hue, V::multiply16(sector, V::all16(60)))};
    }

    // within * spread / 60.
    static Register part16(Register within, Register spread) {
        return V::template shift_right16<4>(
            V::multiply_high16(V::multiply16(within, spread), V::all16((1 << 20) / 60 + 1)));
    }
    // -1 where that falls short.
    static Register short8(Register within, Register spread) {
        Register found = V::zero();
#pragma GCC unroll 8
        for (const ShortPart& part : short_parts)
            found = V::either(found, V::both(V::equal8(within, V::all8(part.within)),
                                             V::equal8(spread, V::all8(part.spread))));
        return found;
    }

    // The colour of a sector of the circle, 0 to 5.
    static Planes colour(Register sector, Register part, Register most, Register least) {
        const auto at = [&](int number) { return V::equal8(sector, V::all8(number)); };
        const Register is[] = {at(0), at(1), at(2), at(3), at(4), at(5)};
        const Register odd = V::either(V::either(is[1], is[3]), is[5]);
        const Register between = V::select(odd, V::sub8(most, part), V::add8(least, part));
        const auto channel = [&](int most_1, int most_2, int between_1, int between_2) {
            return V::select(V::either(is[most_1], is[most_2]), most,
                             V::select(V::either(is[between_1], is[between_2]), between, least));
        };
        return {channel(3, 4, 2, 5), channel(1, 2, 0, 3), channel(0, 5, 1, 4)};
    }

    // Colours taken apart. Hues are 16-bit numbers, in two halves; saturation is most less least.
    struct Parts {
        Register low_hue, high_hue;
        Register most, least;

        Register saturation() const { return V::sub8(most, least); }
    };

    // The hues turned by 0 to 359 degrees.
    [[gnu::always_inline]] static Parts parts(const Planes& p, int32_t degrees) {
        // Hues are at least -60: so no sum is negative, and none reaches twice the circle.
        const Register by = V::all16(degrees < 60 ? degrees + 360 : degrees);
        const Register most = V::max8(V::max8(p.red, p.green), p.blue);
        const Register least = V::min8(V::min8(p.red, p.green), p.blue);
        const Register red_most = V::equal8(most, p.red), green_most = V::equal8(most, p.green);
        // The hue lies from the largest channel towards one of these.
        const Register after = V::select(red_most, p.green, V::select(green_most, p.blue, p.red));
        const Register before = V::select(red_most, p.blue, V::select(green_most, p.red, p.green));
        const Register fall = V::sub8_to_0(before, after);
        const Register difference = V::either(V::sub8_to_0(after, before), fall);
        const Register rising = V::equal8(fall, V::all8(0));
        const Register base =
            V::but_not(V::select(green_most, V::all8(120), V::all8(240)), red_most);
        const Register divisor = V::max8(V::sub8(most, least), V::all8(1));
        const auto hue_of = [](Register difference, Register divisor, Register base,
                               Register rising) {
            return hue(difference, divisor, base, V::differing(rising, V::all16(-1)));
        };
        const Hue low = hue_of(V::widen_low8(difference), V::widen_low8(divisor),
                               V::widen_low8(base), V::zip_low8(rising, rising));
        const Hue high = hue_of(V::widen_high8(difference), V::widen_high8(divisor),
                                V::widen_high8(base), V::zip_high8(rising, rising));
        const Register short_of = is_short(V::narrow16(low.degrees, high.degrees));
        const auto turned = [=](const Hue& hue, Register short_of) {
            const Register degrees = V::add16(hue.degrees, V::both(hue.whole, short_of));
            const Register sum = V::add16(degrees, by);
            return V::min16_unsigned(sum, V::sub16(sum, V::all16(360)));
        };
        return {turned(low, V::zip_low8(short_of, short_of)),
                turned(high, V::zip_high8(short_of, short_of)), most, least};
    }

    static Planes colour(const Parts& p) {
        const Register spread = p.saturation();
        const Position low = position(p.low_hue), high = position(p.high_hue);
        const Register part = V::narrow16(part16(low.within, V::widen_low8(spread)),
                                          part16(high.within, V::widen_high8(spread)));
        const Register short_of = short8(V::narrow16(low.within, high.within), spread);
        return colour(V::narrow16(low.sector, high.sector), V::add8(part, short_of), p.most,
                      p.least);
    }

    static void turn_hue(uint8_t* to, const uint8_t* from, size_t pixels, int32_t degrees) {
        each_block<3, V::size>(to, from, pixels, [&](uint8_t* out, const uint8_t* in) {
            V::store_planes(out, colour(parts(V::load_planes(in), degrees)));
        });
    }

    static void set_hue(uint8_t* to, const uint8_t* from, size_t pixels, int32_t hue, bool softer) {
        const Register sector = V::all8(hue / 60);
        const Register within8 = V::all8(hue % 60), within16 = V::all16(hue % 60);
        // Two thirds of 0 to 255.
        const auto soften = [=](Register spread) {
            return softer ? V::multiply_high16(spread, V::all16(2 * 65536 / 3 + 1)) : spread;
        };
        each_block<3, V::size>(to, from, pixels, [&](uint8_t* out, const uint8_t* in) {
            const Planes p = V::load_planes(in);
            const Register most = V::max8(V::max8(p.red, p.green), p.blue);
            const Register full = V::sub8(most, V::min8(V::min8(p.red, p.green), p.blue));
            const Register low = soften(V::widen_low8(full)), high = soften(V::widen_high8(full));
            const Register spread = V::narrow16(low, high);
            const Register part = V::narrow16(part16(within16, low), part16(within16, high));
            V::store_planes(out, colour(sector, V::add8(part, short8(within8, spread)), most,
                                        V::sub8(most, spread)));
        });
    }

    // Which values pass a band, as masks. One number compared serves both ends: what lies below
    // the lowest wraps round.
    template<auto all, auto sub, auto min, auto equal, int32_t most>
    struct Test {
        Register lowest, extent, inverted;

        explicit Test(const PassBand& band)
            : lowest(all(band.lowest)), extent(all(band.extent < most ? band.extent : most)),
              inverted(all(-band.outside)) {}
        Register operator()(Register values) const {
            const Register above = sub(values, lowest);
            return V::differing(equal(min(above, extent), above), inverted);
        }
    };
    using Test8 = Test<V::all8, V::sub8, V::min8, V::equal8, 255>;
    using Test16 = Test<V::all16, V::sub16, V::min16_unsigned, V::equal16, 32767>;

    // The mask of bytes for those of two halves.
    static Register narrow_mask(Register low, Register high) {
        return V::narrow16(V::template shift_right16<8>(low), V::template shift_right16<8>(high));
    }
    static Planes kept(const Planes& p, Register mask) {
        return {V::both(p.blue, mask), V::both(p.green, mask), V::both(p.red, mask)};
    }

    static void keep_rgb(uint8_t* to, const uint8_t* from, size_t pixels,
                         const PassBand (&bands)[3]) {
        const Test8 red(bands[0]), green(bands[1]), blue(bands[2]);
        each_block<3, V::size>(to, from, pixels, [&](uint8_t* out, const uint8_t* in) {
            const Planes p = V::load_planes(in);
            const Register mask = V::both(V::both(red(p.red), green(p.green)), blue(p.blue));
            V::store_planes(out, kept(p, mask));
        });
    }

    static void keep_hsv(uint8_t* to, const uint8_t* from, size_t pixels,
                         const PassBand (&bands)[3]) {
        const Test16 hue(bands[0]);
        const Test8 saturation(bands[1]), value(bands[2]);
        each_block<3, V::size>(to, from, pixels, [&](uint8_t* out, const uint8_t* in) {
            const auto p = parts(V::load_planes(in), 0);
            const Register mask = V::both(narrow_mask(hue(p.low_hue), hue(p.high_hue)),
                                          V::both(saturation(p.saturation()), value(p.most)));
            V::store_planes(out, kept(colour(p), mask));
        });
    }
};

} // namespace
} // namespace kirvo
