// Hue, saturation and value of a colour, in whole numbers.
#pragma once

#include "core/pixels.hpp"

namespace kirvo {

struct Hsv {
    int32_t hue;        // degrees, 0 to 359
    int32_t saturation; // largest channel minus smallest
    int32_t value;      // largest channel
};

// Channels outside 0..255 are taken as they come.
Hsv rgb_to_hsv(int32_t red, int32_t green, int32_t blue);
// Without the hue, which is 0.
Hsv rgb_to_sv(int32_t red, int32_t green, int32_t blue);
// Black for a hue outside 0..359; channels are clamped to 0..255.
Rgb hsv_to_rgb(const Hsv& hsv);

inline Hsv rgb_to_hsv(const Rgb& rgb) {
    return rgb_to_hsv(rgb.red, rgb.green, rgb.blue);
}
inline Hsv rgb_to_sv(const Rgb& rgb) {
    return rgb_to_sv(rgb.red, rgb.green, rgb.blue);
}

} // namespace kirvo
