// 24-bit pixels kept where their values lie in bands.
#pragma once

#include "simd/kernels/hue.hpp"

namespace kirvo {
namespace {

template<typename V>
struct RangeKernels {
    using Register = typename V::Register;
    using Planes = typename V::Planes;
    using Hue = HueKernels<V>;

    // Which values pass a band, as masks. One number compared serves both ends: what lies below
    // the lowest wraps round.
    struct Test8 {
        Register lowest, extent, inverted;

        explicit Test8(const PassBand& band)
            : lowest(V::all8(band.lowest)), extent(V::all8(band.extent < 255 ? band.extent : 255)),
              inverted(V::all8(band.outside ? -1 : 0)) {}
        Register operator()(Register values) const {
            const Register above = V::sub8(values, lowest);
            return V::differing(V::equal8(V::min8(above, extent), above), inverted);
        }
    };
    struct Test16 {
        Register lowest, extent, inverted;

        explicit Test16(const PassBand& band)
            : lowest(V::all16(band.lowest)), extent(V::all16(band.extent)),
              inverted(V::all16(band.outside ? -1 : 0)) {}
        Register operator()(Register values) const {
            const Register above = V::sub16(values, lowest);
            return V::differing(V::equal16(V::min16_unsigned(above, extent), above), inverted);
        }
    };

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
            const auto p = Hue::parts(V::load_planes(in), 0);
            const Register mask = V::both(narrow_mask(hue(p.low_hue), hue(p.high_hue)),
                                          V::both(saturation(p.saturation()), value(p.most)));
            V::store_planes(out, kept(Hue::colour(p), mask));
        });
    }
};

} // namespace
} // namespace kirvo
