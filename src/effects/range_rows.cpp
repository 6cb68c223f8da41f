#include "effects/range_rows.hpp"

#include "simd/cpu.hpp"
#include "effects/each_pixel.hpp"
#include "effects/hsv.hpp"

namespace kirvo {

namespace {

void rgb(uint8_t* to, const uint8_t* from, size_t pixels, const Span (&spans)[3]) {
    each_pixel(to, from, pixels, [&](const Rgb& c) {
        const bool passes =
            spans[0].passes(c.red) && spans[1].passes(c.green) && spans[2].passes(c.blue);
        return passes ? c : Rgb{0, 0, 0};
    });
}

void hsv(uint8_t* to, const uint8_t* from, size_t pixels, const Span (&spans)[3]) {
    each_pixel(to, from, pixels, [&](const Rgb& c) {
        const Hsv p = rgb_to_hsv(c);
        const bool passes =
            spans[0].passes(p.hue) && spans[1].passes(p.saturation) && spans[2].passes(p.value);
        return passes ? hsv_to_rgb(p) : Rgb{0, 0, 0};
    });
}

} // namespace

const RangeRows scalar_range_rows = {rgb, hsv};

const RangeRows& range_rows() {
    if (cpu_has_vbmi())
        return avx512::range_rows;
    if (cpu_level() >= CpuLevel::avx2)
        return avx2::range_rows;
    return cpu_level() >= CpuLevel::sse2 ? sse2::range_rows : scalar_range_rows;
}

} // namespace kirvo
