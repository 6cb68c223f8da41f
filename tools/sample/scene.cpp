// Coordinates: y runs from 0 (top) to 1 (bottom), x in the same unit from the left.
#include "scene.hpp"

#include <algorithm>
#include <cmath>

namespace kirvo_sample {

namespace {

constexpr float shore = 0.600f; // far side of the lake
constexpr float bank = 0.700f;  // near side, on average

uint32_t hash(uint32_t x, uint32_t y, uint32_t z) {
    uint32_t h = x * 0x8DA6B343u ^ y * 0xD8163841u ^ z * 0xCB1AB31Fu;
    h = (h ^ (h >> 15)) * 0x2C1B3C6Du;
    h = (h ^ (h >> 12)) * 0x297A2D39u;
    return h ^ (h >> 15);
}

float unit(uint32_t bits) { return static_cast<float>(bits >> 8) * (1.0f / 16777216.0f); }

float lerp(float from, float to, float t) { return from + (to - from) * t; }

float ease(float t) { return t * t * (3.0f - 2.0f * t); }

float smooth(float low, float high, float value) {
    return ease(std::clamp((value - low) / (high - low), 0.0f, 1.0f));
}

Colour mix(const Colour& from, const Colour& to, float t) {
    return {lerp(from.red, to.red, t), lerp(from.green, to.green, t), lerp(from.blue, to.blue, t)};
}

Colour scale(const Colour& colour, float by) {
    return {colour.red * by, colour.green * by, colour.blue * by};
}

uint8_t to_byte(float channel) {
    return static_cast<uint8_t>(std::clamp(channel, 0.0f, 1.0f) * 255.0f + 0.5f);
}

} // namespace

Scene::Scene(int width, int height, uint32_t seed)
    : width_(width), height_(height), seed_(seed), columns_(static_cast<size_t>(width)) {
    for (int i = 0; i < width; ++i) {
        const float x = (static_cast<float>(i) + 0.5f) / static_cast<float>(height);
        Column& column = columns_[static_cast<size_t>(i)];
        for (int layer = 0; layer < ridge_count; ++layer)
            column.ridges[static_cast<size_t>(layer)] = ridge(x, layer);
        column.bank = bank + 0.02f * (fractal(x * 7.0f, 0.3f, 6, 800) - 0.5f);
    }
}

const Scene::Column& Scene::column_at(float x) const {
    const int i = static_cast<int>(x * static_cast<float>(height_));
    return columns_[static_cast<size_t>(std::clamp(i, 0, width_ - 1))];
}

// Value noise from 0 to 1, one lattice point per unit.
float Scene::noise(float x, float y, uint32_t layer) const {
    const float fx = std::floor(x), fy = std::floor(y);
    const auto ix = static_cast<uint32_t>(static_cast<int32_t>(fx));
    const auto iy = static_cast<uint32_t>(static_cast<int32_t>(fy));
    const float tx = ease(x - fx), ty = ease(y - fy);
    const uint32_t z = layer * 0x9E3779B9u + seed_;
    const float top = lerp(unit(hash(ix, iy, z)), unit(hash(ix + 1, iy, z)), tx);
    const float bottom = lerp(unit(hash(ix, iy + 1, z)), unit(hash(ix + 1, iy + 1, z)), tx);
    return lerp(top, bottom, ty);
}

// Octaves of noise, each of half the size and roughness times the strength; 0 to 1.
float Scene::fractal(float x, float y, int octaves, uint32_t layer, float roughness) const {
    float sum = 0, strength = 1, total = 0;
    for (int i = 0; i < octaves; ++i) {
        sum += strength * noise(x, y, layer + static_cast<uint32_t>(i));
        total += strength;
        strength *= roughness;
        const float turned = 1.6f * x + 1.2f * y + 17.0f; // turned, so that no lattice shows
        y = 1.6f * y - 1.2f * x + 29.0f;
        x = turned;
    }
    return sum / total;
}

// Height of a ridge line in the picture.
float Scene::ridge(float x, int layer) const {
    constexpr float base[ridge_count] = {0.34f, 0.42f, 0.50f, 0.575f};
    constexpr float height[ridge_count] = {0.42f, 0.26f, 0.15f, 0.04f};
    constexpr float frequency[ridge_count] = {1.7f, 2.3f, 3.1f, 6.0f};
    const auto z = static_cast<uint32_t>(100 + 40 * layer);
    float top = base[layer];
    top -= height[layer] * (fractal(x * frequency[layer], 0.5f, 9, z) - 0.45f);
    if (layer == ridge_count - 1) { // tree tops: narrow peaks of varied height
        const float tree = x * 110.0f;
        const float cell = tree - std::floor(tree);
        const float tall = unit(hash(static_cast<uint32_t>(static_cast<int32_t>(tree)), 3, seed_));
        top -= (0.004f + 0.022f * tall) * (1.0f - std::fabs(2.0f * cell - 1.0f));
    }
    return top;
}

Colour Scene::sky(float x, float y) const {
    const Colour zenith{0.16f, 0.36f, 0.70f}, horizon{0.80f, 0.87f, 0.93f};
    Colour colour = mix(zenith, horizon, smooth(-0.05f, 0.55f, y));
    const float dx = x - 1.05f, dy = y - 0.10f;
    colour = mix(colour, {1.0f, 0.95f, 0.82f}, 0.6f / (1.0f + 30.0f * (dx * dx + dy * dy)));

    const float flat = 1.0f / (0.75f - y); // clouds come nearer to each other towards the horizon
    const float cx = x * flat * 1.1f, cy = flat * 2.6f;
    const float warp = fractal(cx * 1.5f, cy * 1.5f, 4, 11);
    const float body = fractal(cx + warp, cy + 0.7f * warp, 10, 1);
    const float cover = smooth(0.42f, 0.62f, body);
    const float lit = fractal(cx + warp - 0.06f, cy + 0.7f * warp - 0.10f, 7, 1);
    const float light = std::clamp(0.80f + 1.5f * (body - lit), 0.45f, 1.02f);
    return mix(colour, {light, light * 0.99f, light * 0.985f}, cover * 0.93f);
}

Colour Scene::mountain(float x, float y, float ridge, int layer) const {
    const auto z = static_cast<uint32_t>(300 + 30 * layer);
    const float detail = 9.0f + 5.0f * static_cast<float>(layer);
    // Light from the right: the slope of the rock's own relief.
    const float here = fractal(x * detail, y * detail * 1.4f, 9, z, 0.68f);
    const float right = fractal((x + 0.004f) * detail, (y - 0.003f) * detail * 1.4f, 9, z, 0.68f);
    const float light = std::clamp(0.72f + 4.2f * (here - right), 0.15f, 1.35f);

    const float depth = y - ridge;
    const Colour rock{0.43f, 0.39f, 0.36f}, slope{0.25f, 0.31f, 0.17f}, snow{0.95f, 0.97f, 1.0f};
    Colour colour = mix(rock, slope, smooth(0.04f, 0.20f, depth + 0.16f * (here - 0.5f)));
    const float snow_line = 0.33f + 0.22f * (here - 0.5f) + 0.05f * (light - 0.6f);
    colour = mix(snow, colour, smooth(snow_line - 0.02f, snow_line + 0.02f, y));
    colour = scale(colour, light * (0.40f + 1.2f * fractal(x * 620.0f, y * 740.0f, 2, z + 20, 0.9f)));
    const float haze = 0.52f - 0.17f * static_cast<float>(layer);
    return mix(colour, {0.68f, 0.78f, 0.88f}, haze + 0.12f * smooth(0.0f, 0.2f, depth));
}

Colour Scene::forest(float x, float y, float top) const {
    const float crown = fractal(x * 130.0f, y * 90.0f, 6, 500, 0.95f);
    const float patch = fractal(x * 9.0f, y * 22.0f, 4, 520);
    const float shade = std::clamp(0.12f + 2.6f * (crown - 0.34f), 0.05f, 1.0f) *
                        lerp(1.1f, 0.55f, smooth(0.0f, 0.05f, y - top));
    const Colour dark{0.16f, 0.29f, 0.13f}, bright{0.50f, 0.52f, 0.18f};
    return mix(scale(mix(dark, bright, smooth(0.4f, 0.75f, patch)), shade),
               {0.68f, 0.78f, 0.88f}, 0.07f);
}

Colour Scene::water(float x, float y) const {
    // The far side mirrored, moved about by waves that grow towards the viewer.
    const float near = (y - shore) / (bank - shore);
    const float waves = fractal(x * 26.0f / (0.25f + near), 30.0f / (0.12f + near), 5, 600) - 0.5f;
    const float mirrored = shore - (y - shore) * 2.4f + waves * 0.05f * (0.3f + near);
    const float shifted = x + waves * 0.012f;
    const Colour mirror =
        land_or_sky(shifted, std::min(mirrored, shore - 0.002f), column_at(shifted));
    const float glint = smooth(0.62f, 0.80f, fractal(x * 190.0f, 55.0f / (0.16f + near), 4, 620));
    const Colour deep{0.07f, 0.19f, 0.24f};
    return mix(mix(mirror, deep, 0.30f + 0.22f * near), {0.92f, 0.95f, 0.97f}, 0.30f * glint);
}

Colour Scene::meadow(float x, float y) const {
    // Seen at a flat angle: the same detail is smaller farther away.
    const float near = (y - bank) / (1.0f - bank);
    const float size = 0.10f + 0.90f * near;
    const float patch = fractal((x - 0.7f) * 5.0f / size, 9.0f / size, 6, 700);
    const float blades = fractal(x * 420.0f / size, y * 150.0f / size, 5, 720, 0.75f);
    const float fine = noise(x * 1500.0f, y * 1100.0f, 740);
    const Colour green{0.27f, 0.40f, 0.10f}, straw{0.66f, 0.60f, 0.27f}, soil{0.30f, 0.22f, 0.13f};
    Colour colour = mix(green, straw, smooth(0.38f, 0.68f, patch));
    colour = mix(soil, colour, smooth(0.22f, 0.40f, blades + 0.4f * (patch - 0.3f)));
    colour = scale(colour, 1.7f * blades + 1.3f * (fine - 0.5f));

    const float fx = (x - 0.7f) * 62.0f / size, fy = 26.0f / size; // flowers, one a cell at most
    const auto cx = static_cast<uint32_t>(static_cast<int32_t>(std::floor(fx)));
    const auto cy = static_cast<uint32_t>(static_cast<int32_t>(std::floor(fy)));
    const uint32_t flower = hash(cx, cy, seed_ + 9);
    if (unit(flower) < 0.10f + 0.25f * smooth(0.45f, 0.7f, patch)) {
        const float dx = fx - std::floor(fx) - 0.5f, dy = fy - std::floor(fy) - 0.5f;
        const float inside = 1.0f - smooth(0.010f, 0.030f, dx * dx + dy * dy * 0.5f);
        const Colour kinds[3] = {{0.85f, 0.13f, 0.12f}, {0.95f, 0.93f, 0.90f}, {0.94f, 0.77f, 0.10f}};
        colour = mix(colour, kinds[flower % 3], inside * 0.9f);
    }
    const float wet = smooth(0.0f, 0.03f, near); // a dark edge along the water
    return scale(colour, 0.55f + 0.45f * wet);
}

Colour Scene::land_or_sky(float x, float y, const Column& column) const {
    if (y >= column.ridges.back())
        return forest(x, y, column.ridges.back());
    for (int layer = ridge_count - 2; layer >= 0; --layer) {
        const float top = column.ridges[static_cast<size_t>(layer)];
        if (y >= top)
            return mountain(x, y, top, layer);
    }
    return sky(x, y);
}

void Scene::render_row(int y, uint8_t* bgr) const {
    const float unit_y = (static_cast<float>(y) + 0.5f) / static_cast<float>(height_);
    for (int x = 0; x < width_; ++x, bgr += 3) {
        const float unit_x = (static_cast<float>(x) + 0.5f) / static_cast<float>(height_);
        Colour colour;
        const Column& column = columns_[static_cast<size_t>(x)];
        if (unit_y >= column.bank)
            colour = meadow(unit_x, unit_y);
        else if (unit_y >= shore)
            colour = water(unit_x, unit_y);
        else
            colour = land_or_sky(unit_x, unit_y, column);
        // Sensor noise: two random bytes a channel make a triangular distribution.
        uint32_t bits = hash(static_cast<uint32_t>(x), static_cast<uint32_t>(y), seed_);
        const auto grain = [&] {
            const float sum = static_cast<float>((bits & 255) + ((bits >> 8) & 255)) - 255.0f;
            bits = hash(bits, 1, 2);
            return sum * (0.090f / 255.0f);
        };
        bgr[0] = to_byte(colour.blue + grain());
        bgr[1] = to_byte(colour.green + grain());
        bgr[2] = to_byte(colour.red + grain());
    }
}

} // namespace kirvo_sample
