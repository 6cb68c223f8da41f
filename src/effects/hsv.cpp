#include "effects/hsv.hpp"

#include <algorithm>

namespace kirvo {

namespace {

uint8_t clamp_channel(int64_t value) {
    return static_cast<uint8_t>(std::clamp<int64_t>(value, 0, 255));
}

// A difference over the spread of the channels, which is not 0: -1 to 1.
double ratio(int64_t difference, int64_t spread) {
    return static_cast<double>(difference) / static_cast<double>(spread);
}

} // namespace

Hsv rgb_to_sv(int32_t red, int32_t green, int32_t blue) {
    const auto [smallest, largest] = std::minmax({red, green, blue});
    return {0,
            static_cast<int32_t>(static_cast<uint32_t>(largest) - static_cast<uint32_t>(smallest)),
            largest};
}

Hsv rgb_to_hsv(int32_t red, int32_t green, int32_t blue) {
    Hsv hsv = rgb_to_sv(red, green, blue);
    const int64_t r = red, g = green, b = blue;
    const int64_t spread = hsv.value - std::min({r, g, b});
    if (spread == 0)
        return hsv;
    double sixths; // of the circle
    if (hsv.value == red)
        sixths = ratio(g - b, spread);
    else if (hsv.value == green)
        sixths = ratio(b - r, spread) + 2.0;
    else
        sixths = ratio(r - g, spread) + 4.0;
    hsv.hue = static_cast<int32_t>(sixths * 60.0);
    if (hsv.hue < 0)
        hsv.hue += 360;
    return hsv;
}

Rgb hsv_to_rgb(const Hsv& hsv) {
    if (hsv.hue < 0 || hsv.hue > 359)
        return {0, 0, 0};
    const int32_t sector = hsv.hue / 60;
    const auto part = static_cast<int64_t>((hsv.hue - 60 * sector) / 60.0 * hsv.saturation);
    const int64_t most = hsv.value, least = most - hsv.saturation;
    const uint8_t high = clamp_channel(most), low = clamp_channel(least),
                  rising = clamp_channel(least + part), falling = clamp_channel(most - part);
    switch (sector) {
    case 0:
        return {high, rising, low};
    case 1:
        return {falling, high, low};
    case 2:
        return {low, high, rising};
    case 3:
        return {low, falling, high};
    case 4:
        return {rising, low, high};
    default:
        return {high, low, falling};
    }
}

} // namespace kirvo
