// Coordinates: y runs from 0 (top) to 1 (bottom), x in the same unit from the left.
#include "scene.hpp"

#include <algorithm>
#include <cmath>

namespace kirvo_sample {

namespace {

constexpr float shore = 0.600f; // far side of the lake
constexpr float bank = 0.700f;  // near side, on average

} // namespace

Scene::Scene(int width, int height, uint32_t seed)
    : width_(width), height_(height), noise_(seed), columns_(static_cast<size_t>(width)) {
    for (int i = 0; i < width; ++i) {
        const float x = (static_cast<float>(i) + 0.5f) / static_cast<float>(height);
        Column& column = columns_[static_cast<size_t>(i)];
        for (int layer = 0; layer < ridge_count; ++layer)
            column.ridges[static_cast<size_t>(layer)] = ridge(x, layer);
        column.bank = bank + 0.02f * (noise_.fractal(x * 7.0f, 0.3f, 6, 800) - 0.5f);
    }
}

const Scene::Column& Scene::column_at(float x) const {
    const int i = static_cast<int>(x * static_cast<float>(height_));
    return columns_[static_cast<size_t>(std::clamp(i, 0, width_ - 1))];
}

// Height of a ridge line in the picture.
float Scene::ridge(float x, int layer) const {
    constexpr float base[ridge_count] = {0.34f, 0.42f, 0.50f, 0.575f};
    constexpr float height[ridge_count] = {0.42f, 0.26f, 0.15f, 0.04f};
    constexpr float frequency[ridge_count] = {1.7f, 2.3f, 3.1f, 6.0f};
    const auto z = static_cast<uint32_t>(100 + 40 * layer);
    float top = base[layer];
    top -= height[layer] * (noise_.fractal(x * frequency[layer], 0.5f, 9, z) - 0.45f);
    if (layer == ridge_count - 1) { // tree tops: narrow peaks of varied height
        const float tree = x * 110.0f;
        const float cell = tree - std::floor(tree);
        const float tall =
            unit(hash(static_cast<uint32_t>(static_cast<int32_t>(tree)), 3, noise_.seed()));
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
    const float warp = noise_.fractal(cx * 1.5f, cy * 1.5f, 4, 11);
    const float body = noise_.fractal(cx + warp, cy + 0.7f * warp, 10, 1);
    const float cover = smooth(0.42f, 0.62f, body);
    const float lit = noise_.fractal(cx + warp - 0.06f, cy + 0.7f * warp - 0.10f, 7, 1);
    const float light = std::clamp(0.80f + 1.5f * (body - lit), 0.45f, 1.02f);
    return mix(colour, {light, light * 0.99f, light * 0.985f}, cover * 0.93f);
}

Colour Scene::mountain(float x, float y, float ridge, int layer) const {
    const auto z = static_cast<uint32_t>(300 + 30 * layer);
    const float detail = 9.0f + 5.0f * static_cast<float>(layer);
    // Light from the right: the slope of the rock's own relief.
    const float here = noise_.fractal(x * detail, y * detail * 1.4f, 9, z, 0.68f);
    const float right =
        noise_.fractal((x + 0.004f) * detail, (y - 0.003f) * detail * 1.4f, 9, z, 0.68f);
    const float light = std::clamp(0.72f + 4.2f * (here - right), 0.15f, 1.35f);

    const float depth = y - ridge;
    const Colour rock{0.43f, 0.39f, 0.36f}, slope{0.25f, 0.31f, 0.17f}, snow{0.95f, 0.97f, 1.0f};
    Colour colour = mix(rock, slope, smooth(0.04f, 0.20f, depth + 0.16f * (here - 0.5f)));
    const float snow_line = 0.33f + 0.22f * (here - 0.5f) + 0.05f * (light - 0.6f);
    colour = mix(snow, colour, smooth(snow_line - 0.02f, snow_line + 0.02f, y));
    colour = scale(
        colour, light * (0.40f + 1.2f * noise_.fractal(x * 620.0f, y * 740.0f, 2, z + 20, 0.9f)));
    const float haze = 0.52f - 0.17f * static_cast<float>(layer);
    return mix(colour, {0.68f, 0.78f, 0.88f}, haze + 0.12f * smooth(0.0f, 0.2f, depth));
}

Colour Scene::forest(float x, float y, float top) const {
    const float crown = noise_.fractal(x * 130.0f, y * 90.0f, 6, 500, 0.95f);
    const float patch = noise_.fractal(x * 9.0f, y * 22.0f, 4, 520);
    const float shade = std::clamp(0.12f + 2.6f * (crown - 0.34f), 0.05f, 1.0f) *
                        lerp(1.1f, 0.55f, smooth(0.0f, 0.05f, y - top));
    const Colour dark{0.16f, 0.29f, 0.13f}, bright{0.50f, 0.52f, 0.18f};
    return mix(scale(mix(dark, bright, smooth(0.4f, 0.75f, patch)), shade), {0.68f, 0.78f, 0.88f},
               0.07f);
}

Colour Scene::water(float x, float y) const {
    // The far side mirrored, moved about by waves that grow towards the viewer.
    const float near = (y - shore) / (bank - shore);
    const float waves =
        noise_.fractal(x * 26.0f / (0.25f + near), 30.0f / (0.12f + near), 5, 600) - 0.5f;
    const float mirrored = shore - (y - shore) * 2.4f + waves * 0.05f * (0.3f + near);
    const float shifted = x + waves * 0.012f;
    const Colour mirror =
        land_or_sky(shifted, std::min(mirrored, shore - 0.002f), column_at(shifted));
    const float glint =
        smooth(0.62f, 0.80f, noise_.fractal(x * 190.0f, 55.0f / (0.16f + near), 4, 620));
    const Colour deep{0.07f, 0.19f, 0.24f};
    return mix(mix(mirror, deep, 0.30f + 0.22f * near), {0.92f, 0.95f, 0.97f}, 0.30f * glint);
}

Colour Scene::meadow(float x, float y) const {
    // Seen at a flat angle: the same detail is smaller farther away.
    const float near = (y - bank) / (1.0f - bank);
    const float size = 0.10f + 0.90f * near;
    const float patch = noise_.fractal((x - 0.7f) * 5.0f / size, 9.0f / size, 6, 700);
    const float blades = noise_.fractal(x * 420.0f / size, y * 150.0f / size, 5, 720, 0.75f);
    const float fine = noise_.at(x * 1500.0f, y * 1100.0f, 740);
    const Colour green{0.27f, 0.40f, 0.10f}, straw{0.66f, 0.60f, 0.27f}, soil{0.30f, 0.22f, 0.13f};
    Colour colour = mix(green, straw, smooth(0.38f, 0.68f, patch));
    colour = mix(soil, colour, smooth(0.22f, 0.40f, blades + 0.4f * (patch - 0.3f)));
    colour = scale(colour, 1.7f * blades + 1.3f * (fine - 0.5f));

    const float fx = (x - 0.7f) * 62.0f / size, fy = 26.0f / size; // flowers, one a cell at most
    const auto cx = static_cast<uint32_t>(static_cast<int32_t>(std::floor(fx)));
    const auto cy = static_cast<uint32_t>(static_cast<int32_t>(std::floor(fy)));
    const uint32_t flower = hash(cx, cy, noise_.seed() + 9);
    if (unit(flower) < 0.10f + 0.25f * smooth(0.45f, 0.7f, patch)) {
        const float dx = fx - std::floor(fx) - 0.5f, dy = fy - std::floor(fy) - 0.5f;
        const float inside = 1.0f - smooth(0.010f, 0.030f, dx * dx + dy * dy * 0.5f);
        const Colour kinds[3] = {
            {0.85f, 0.13f, 0.12f}, {0.95f, 0.93f, 0.90f}, {0.94f, 0.77f, 0.10f}};
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
        put_pixel(bgr, colour, 0.090f, x, y, noise_.seed());
    }
}

} // namespace kirvo_sample
