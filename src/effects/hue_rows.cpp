#include "effects/hue_rows.hpp"

#include "simd/cpu.hpp"
#include "effects/each_pixel.hpp"
#include "effects/hsv.hpp"

namespace kirvo {

namespace {

void set(uint8_t* to, const uint8_t* from, size_t pixels, int32_t hue, bool softer) {
    each_pixel(to, from, pixels, [=](const Rgb& rgb) {
        Hsv hsv = rgb_to_sv(rgb);
        hsv.hue = hue;
        if (softer)
            hsv.saturation = hsv.saturation * 2 / 3;
        return hsv_to_rgb(hsv);
    });
}

void turn(uint8_t* to, const uint8_t* from, size_t pixels, int32_t degrees) {
    each_pixel(to, from, pixels, [=](const Rgb& rgb) {
        Hsv hsv = rgb_to_hsv(rgb);
        hsv.hue = (hsv.hue + degrees) % 360;
        return hsv_to_rgb(hsv);
    });
}

} // namespace

const HueRows scalar_hue_rows = {set, turn};

const HueRows& hue_rows() {
    if (cpu_has_vbmi())
        return avx512::hue_rows;
    if (cpu_level() >= CpuLevel::avx2)
        return avx2::hue_rows;
    return cpu_level() >= CpuLevel::sse2 ? sse2::hue_rows : scalar_hue_rows;
}

} // namespace kirvo
