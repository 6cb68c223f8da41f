#include "noise.hpp"

#include <algorithm>
#include <cmath>

namespace kirvo_sample {

namespace {

float ease(float t) { return t * t * (3.0f - 2.0f * t); }

uint8_t to_byte(float channel) {
    return static_cast<uint8_t>(std::clamp(channel, 0.0f, 1.0f) * 255.0f + 0.5f);
}

} // namespace

uint32_t hash(uint32_t x, uint32_t y, uint32_t z) {
    uint32_t h = x * 0x8DA6B343u ^ y * 0xD8163841u ^ z * 0xCB1AB31Fu;
    h = (h ^ (h >> 15)) * 0x2C1B3C6Du;
    h = (h ^ (h >> 12)) * 0x297A2D39u;
    return h ^ (h >> 15);
}

float unit(uint32_t bits) { return static_cast<float>(bits >> 8) * (1.0f / 16777216.0f); }

float lerp(float from, float to, float t) { return from + (to - from) * t; }

float smooth(float low, float high, float value) {
    return ease(std::clamp((value - low) / (high - low), 0.0f, 1.0f));
}

Colour mix(const Colour& from, const Colour& to, float t) {
    return {lerp(from.red, to.red, t), lerp(from.green, to.green, t), lerp(from.blue, to.blue, t)};
}

Colour scale(const Colour& colour, float by) {
    return {colour.red * by, colour.green * by, colour.blue * by};
}

float Noise::at(float x, float y, uint32_t layer) const {
    const float fx = std::floor(x), fy = std::floor(y);
    const auto ix = static_cast<uint32_t>(static_cast<int32_t>(fx));
    const auto iy = static_cast<uint32_t>(static_cast<int32_t>(fy));
    const float tx = ease(x - fx), ty = ease(y - fy);
    const uint32_t z = layer * 0x9E3779B9u + seed_;
    const float top = lerp(unit(hash(ix, iy, z)), unit(hash(ix + 1, iy, z)), tx);
    const float bottom = lerp(unit(hash(ix, iy + 1, z)), unit(hash(ix + 1, iy + 1, z)), tx);
    return lerp(top, bottom, ty);
}

float Noise::fractal(float x, float y, int octaves, uint32_t layer, float roughness) const {
    float sum = 0, strength = 1, total = 0;
    for (int i = 0; i < octaves; ++i) {
        sum += strength * at(x, y, layer + static_cast<uint32_t>(i));
        total += strength;
        strength *= roughness;
        const float turned = 1.6f * x + 1.2f * y + 17.0f; // turned, so that no lattice shows
        y = 1.6f * y - 1.2f * x + 29.0f;
        x = turned;
    }
    return sum / total;
}

// Two random bytes a channel make a triangular distribution.
void put_pixel(uint8_t* bgr, const Colour& colour, float grain, int x, int y, uint32_t seed) {
    uint32_t bits = hash(static_cast<uint32_t>(x), static_cast<uint32_t>(y), seed);
    const auto next = [&] {
        const float sum = static_cast<float>((bits & 255) + ((bits >> 8) & 255)) - 255.0f;
        bits = hash(bits, 1, 2);
        return sum * (grain / 255.0f);
    };
    bgr[0] = to_byte(colour.blue + next());
    bgr[1] = to_byte(colour.green + next());
    bgr[2] = to_byte(colour.red + next());
}

} // namespace kirvo_sample
