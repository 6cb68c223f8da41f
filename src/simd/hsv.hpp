// Hue, saturation and value of a colour, in whole numbers. Inline, and free of jumps that depend on
// the colour, since they run for every pixel.
#pragma once

#include "simd/kernel_types.hpp"

#include <algorithm>

namespace kirvo {

struct Hsv {
    int32_t hue;        // degrees, 0 to 359
    int32_t saturation; // largest channel minus smallest
    int32_t value;      // largest channel
};

// Largest channel minus smallest.
inline int64_t spread_of(int64_t red, int64_t green, int64_t blue) {
    return std::max(std::max(red, green), blue) - std::min(std::min(red, green), blue);
}

// Without the hue, which is 0. Channels outside 0..255 are taken as they come.
inline Hsv rgb_to_sv(int32_t red, int32_t green, int32_t blue) {
    const auto saturation = static_cast<uint32_t>(spread_of(red, green, blue));
    return {0, static_cast<int32_t>(saturation), std::max(std::max(red, green), blue)};
}

inline Hsv rgb_to_hsv(int32_t red, int32_t green, int32_t blue) {
    Hsv hsv = rgb_to_sv(red, green, blue);
    const int64_t r = red, g = green, b = blue, spread = spread_of(red, green, blue);
    if (spread == 0)
        return hsv;
    // Counted from the largest channel, the first of them.
    const int64_t differences[] = {g - b, b - r, r - g};
    const bool not_red = hsv.value != red;
    const int largest = not_red + (not_red & (hsv.value != green));
    const double sixths = // of the circle
        static_cast<double>(differences[largest]) / static_cast<double>(spread) + 2.0 * largest;
    hsv.hue = static_cast<int32_t>(sixths * 60.0);
    hsv.hue += hsv.hue < 0 ? 360 : 0;
    return hsv;
}

// Black for a hue outside 0..359; channels are clamped to 0..255.
inline Rgb hsv_to_rgb(const Hsv& hsv) {
    if (hsv.hue < 0 || hsv.hue > 359)
        return {0, 0, 0};
    const int32_t sector = hsv.hue / 60;
    const auto part = static_cast<int64_t>((hsv.hue - 60 * sector) / 60.0 * hsv.saturation);
    const int64_t most = hsv.value, least = most - hsv.saturation;
    const auto clamped = [](int64_t value) {
        return static_cast<uint8_t>(std::clamp<int64_t>(value, 0, 255));
    };
    enum Level { high, low, rising, falling };
    const uint8_t levels[] = {clamped(most), clamped(least), clamped(least + part),
                              clamped(most - part)};
    static constexpr struct {
        Level red, green, blue;
    } sectors[] = {{high, rising, low},  {falling, high, low}, {low, high, rising},
                   {low, falling, high}, {rising, low, high},  {high, low, falling}};
    const auto& of = sectors[sector];
    return {levels[of.red], levels[of.green], levels[of.blue]};
}

inline Hsv rgb_to_hsv(const Rgb& rgb) { return rgb_to_hsv(rgb.red, rgb.green, rgb.blue); }
inline Hsv rgb_to_sv(const Rgb& rgb) { return rgb_to_sv(rgb.red, rgb.green, rgb.blue); }

} // namespace kirvo
