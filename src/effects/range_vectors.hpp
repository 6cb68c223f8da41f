// The range rows over vectors, for each level's Planes.
#pragma once

#include "effects/hue_vectors.hpp"
#include "effects/range_rows.hpp"

namespace kirvo {
namespace {

template<typename V>
struct RangeVectors {
    using Vector = typename V::Vector;
    using Hue = HueVectors<V>;

    // Which values pass a span, as masks. One number compared serves both ends: what lies below
    // the lowest wraps round.
    struct Test8 {
        Vector lowest, extent, inverted;

        explicit Test8(const Span& span)
            : lowest(V::all8(span.lowest)), extent(V::all8(span.extent < 255 ? span.extent : 255)),
              inverted(V::all8(span.outside ? -1 : 0)) {}
        Vector operator()(Vector values) const {
            const Vector above = V::sub8(values, lowest);
            return V::differing(V::equal8(V::min8(above, extent), above), inverted);
        }
    };
    struct Test16 {
        Vector lowest, extent, inverted;

        explicit Test16(const Span& span)
            : lowest(V::all16(span.lowest)), extent(V::all16(span.extent)),
              inverted(V::all16(span.outside ? -1 : 0)) {}
        Vector operator()(Vector values) const {
            const Vector above = V::sub16(values, lowest);
            return V::differing(V::equal16(V::unsigned_min16(above, extent), above), inverted);
        }
    };

    // The mask of bytes for those of two halves.
    static Vector narrow_mask(Vector low, Vector high) {
        return V::narrow(V::template shift_right16<8>(low), V::template shift_right16<8>(high));
    }
    static V kept(const V& p, Vector mask) {
        return {V::both(p.blue, mask), V::both(p.green, mask), V::both(p.red, mask)};
    }

    static void rgb(uint8_t* to, const uint8_t* from, size_t pixels, const Span (&spans)[3]) {
        const Test8 red(spans[0]), green(spans[1]), blue(spans[2]);
        each_block<3 * V::pixels>(to, from, 3 * pixels, [&](uint8_t* out, const uint8_t* in) {
            const V p = V::load(in);
            kept(p, V::both(V::both(red(p.red), green(p.green)), blue(p.blue))).store(out);
        });
    }

    static void hsv(uint8_t* to, const uint8_t* from, size_t pixels, const Span (&spans)[3]) {
        const Test16 hue(spans[0]);
        const Test8 saturation(spans[1]), value(spans[2]);
        each_block<3 * V::pixels>(to, from, 3 * pixels, [&](uint8_t* out, const uint8_t* in) {
            const auto p = Hue::parts(V::load(in), 0);
            const Vector mask = V::both(narrow_mask(hue(p.low_hue), hue(p.high_hue)),
                                        V::both(saturation(p.saturation()), value(p.most)));
            kept(Hue::colour(p), mask).store(out);
        });
    }
};

} // namespace
} // namespace kirvo
