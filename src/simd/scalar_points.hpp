// The definition of the kernels whose results depend on one pixel or byte alone.
#pragma once

#include "simd/hsv.hpp"
#include "simd/kernels.hpp"

#include <algorithm>
#include <cstring>

namespace kirvo::scalar {
namespace {

template<auto blend>
void blended(uint8_t* to, const uint8_t* from, size_t bytes, uint32_t kept) {
    for (size_t i = 0; i < bytes; ++i)
        to[i] = static_cast<uint8_t>(blend(to[i], from[i]) & kept >> 8 * (i % 4));
}
constexpr auto add = blended<[](uint32_t a, uint32_t b) { return std::min(a + b, 255u); }>;
constexpr auto average = blended<[](uint32_t a, uint32_t b) { return (a + b) / 2; }>;
constexpr auto subtract = blended<[](uint32_t a, uint32_t b) { return a - std::min(a, b); }>;

void scale(uint8_t* to, const uint8_t* from, size_t bytes, int32_t factor, int32_t offset) {
    for (size_t i = 0; i < bytes; ++i)
        to[i] = static_cast<uint8_t>(std::clamp(from[i] * factor / 100 + offset, 0, 255));
}

void map(uint8_t* to, const uint8_t* from, size_t bytes, const Levels& levels) {
    for (size_t i = 0; i < bytes; ++i)
        to[i] = levels.level[from[i]];
}

template<auto change>
void changed(uint8_t* to, const uint8_t* from, size_t bytes, uint32_t pattern) {
    for (size_t i = 0; i < bytes; ++i)
        to[i] = static_cast<uint8_t>(change(from[i], pattern >> 8 * (i % 4)));
}
constexpr auto invert = changed<[](uint32_t byte, uint32_t bits) { return byte ^ bits; }>;
constexpr auto keep_bits = changed<[](uint32_t byte, uint32_t bits) { return byte & bits; }>;

void correct(uint8_t* to, const uint8_t* from, const uint8_t* plus, const uint8_t* minus,
             size_t bytes) {
    for (size_t i = 0; i < bytes; ++i)
        to[i] = static_cast<uint8_t>(std::clamp(from[i] + plus[i] - minus[i], 0, 255));
}

void triple(uint8_t* to, const uint8_t* from, size_t count) {
    for (size_t i = 0; i < count; ++i)
        to[3 * i] = to[3 * i + 1] = to[3 * i + 2] = from[i];
}

void copy(uint8_t* to, const uint8_t* from, size_t bytes) { std::memcpy(to, from, bytes); }

void map_channels(uint8_t* to, const uint8_t* from, size_t pixels, const ChannelLevels& levels) {
    for (; pixels != 0; --pixels, to += 3, from += 3) {
        for (int c = 0; c < 3; ++c)
            to[c] = levels.channel[c].level[from[c]];
    }
}

void permute(uint8_t* to, const uint8_t* from, size_t pixels, const ChannelOrder& order) {
    for (; pixels != 0; --pixels, to += 3, from += 3) {
        const uint8_t source[] = {from[0], from[1], from[2]};
        for (int c = 0; c < 3; ++c)
            to[c] = source[order.from[c]];
    }
}

uint8_t luminance_of(const uint8_t* bgr) {
    return static_cast<uint8_t>((77 * bgr[2] + 150 * bgr[1] + 29 * bgr[0] + 128) >> 8);
}

void grey(uint8_t* to, const uint8_t* from, size_t pixels) {
    for (; pixels != 0; --pixels, to += 3, from += 3)
        to[0] = to[1] = to[2] = luminance_of(from);
}

void luminance(uint8_t* to, const uint8_t* bgr, size_t pixels) {
    for (size_t i = 0; i < pixels; ++i)
        to[i] = luminance_of(bgr + 3 * i);
}

// Makes change(Rgb) of every pixel.
template<typename Change>
void each_pixel(uint8_t* to, const uint8_t* from, size_t pixels, const Change& change) {
    for (; pixels != 0; --pixels, to += 3, from += 3) {
        const Rgb changed = change(Rgb{from[2], from[1], from[0]});
        to[0] = changed.blue;
        to[1] = changed.green;
        to[2] = changed.red;
    }
}

void set_hue(uint8_t* to, const uint8_t* from, size_t pixels, int32_t hue, bool softer) {
    each_pixel(to, from, pixels, [=](const Rgb& rgb) {
        Hsv hsv = rgb_to_sv(rgb);
        hsv.hue = hue;
        if (softer)
            hsv.saturation = hsv.saturation * 2 / 3;
        return hsv_to_rgb(hsv);
    });
}

void turn_hue(uint8_t* to, const uint8_t* from, size_t pixels, int32_t degrees) {
    each_pixel(to, from, pixels, [=](const Rgb& rgb) {
        Hsv hsv = rgb_to_hsv(rgb);
        hsv.hue = (hsv.hue + degrees) % 360;
        return hsv_to_rgb(hsv);
    });
}

void keep_rgb(uint8_t* to, const uint8_t* from, size_t pixels, const PassBand (&bands)[3]) {
    each_pixel(to, from, pixels, [&](const Rgb& c) {
        const bool passes =
            bands[0].passes(c.red) && bands[1].passes(c.green) && bands[2].passes(c.blue);
        return passes ? c : Rgb{0, 0, 0};
    });
}

void keep_hsv(uint8_t* to, const uint8_t* from, size_t pixels, const PassBand (&bands)[3]) {
    each_pixel(to, from, pixels, [&](const Rgb& c) {
        const Hsv p = rgb_to_hsv(c);
        const bool passes =
            bands[0].passes(p.hue) && bands[1].passes(p.saturation) && bands[2].passes(p.value);
        return passes ? hsv_to_rgb(p) : Rgb{0, 0, 0};
    });
}

void replace(uint8_t* to, const uint8_t* from, size_t pixels, const uint8_t* key) {
    for (; pixels != 0; --pixels, to += 3, from += 3) {
        if (from[0] != key[0] || from[1] != key[1] || from[2] != key[2])
            std::memcpy(to, from, 3);
    }
}

template<size_t from_bytes, size_t to_bytes>
void convert(const uint8_t* from, uint8_t* to, size_t pixels, const PixelMoves& moves) {
    for (; pixels != 0; --pixels, from += from_bytes, to += to_bytes) {
        uint32_t word = 0, moved = 0;
        std::memcpy(&word, from, from_bytes);
        for (const FieldMove& field : moves.channel)
            moved |= (word >> field.right) << field.left & field.keep;
        std::memcpy(to, &moved, to_bytes);
    }
}

} // namespace
} // namespace kirvo::scalar
