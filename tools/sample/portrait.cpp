#include "portrait.hpp"

#include <algorithm>
#include <cmath>

namespace kirvo_sample {

namespace {

constexpr float face_height = 0.26f, eye_x = 0.076f, eye_y = -0.022f, mouth_y = 0.138f;

// A hill of height 1 with these half-widths.
float hill(float u, float v, float width, float height) {
    return std::exp(-(u * u) / (width * width) - (v * v) / (height * height));
}

// Distance from the middle of the face: 1 at its outline, which narrows towards the chin.
float from_middle(float u, float v) {
    const float width = 0.186f * (1.0f - 0.30f * smooth(0.02f, face_height, v));
    return std::sqrt(u * u / (width * width) + v * v / (face_height * face_height));
}

// How far the face stands out towards the viewer.
float relief(float u, float v) {
    const float a = std::fabs(u), r = from_middle(u, v);
    float z = 0.16f * std::sqrt(std::max(0.0f, 1.02f - r * r));
    z +=
        0.030f * hill(u, 0, 0.017f, 1) * smooth(-0.06f, 0.07f, v) * (1 - smooth(0.078f, 0.108f, v));
    z += 0.016f * hill(u, v - 0.076f, 0.023f, 0.020f);          // tip of the nose
    z += 0.009f * hill(a - 0.027f, v - 0.080f, 0.011f, 0.013f); // its wings
    z -= 0.020f * hill(a - eye_x, v - eye_y + 0.006f, 0.043f, 0.026f);
    z += 0.009f * hill(a - 0.070f, v + 0.068f, 0.060f, 0.016f); // brows
    z += 0.012f * hill(a - 0.098f, v - 0.045f, 0.050f, 0.045f); // cheeks
    z += 0.011f * hill(u, v - mouth_y, 0.055f, 0.024f);
    z -= 0.005f * hill(u, v - mouth_y, 0.034f, 0.004f);
    z -= 0.004f * hill(u, v - 0.176f, 0.040f, 0.012f);
    return z + 0.014f * hill(u, v - 0.212f, 0.045f, 0.030f); // chin
}

struct Light {
    float soft, shine;
};

// Light from the upper left on a surface whose heights are given.
template<typename Heights>
Light light_on(Heights heights, float u, float v) {
    constexpr float step = 0.0012f;
    const float here = heights(u, v);
    const float nx = (here - heights(u + step, v)) / step,
                ny = (here - heights(u, v + step)) / step;
    const float length = std::sqrt(nx * nx + ny * ny + 1);
    const float facing = (-0.52f * nx - 0.50f * ny + 0.69f) / length;
    const float half = (-0.28f * nx - 0.27f * ny + 0.92f) / length;
    return {std::clamp(0.30f + 0.78f * facing, 0.10f, 1.1f), std::pow(std::max(half, 0.0f), 42.0f)};
}

float mouth_line(float u) { return mouth_y - 1.1f * u * u - 0.004f * std::exp(-u * u / 0.0002f); }

} // namespace

Colour Portrait::background(float u, float v) const {
    Colour colour =
        mix({0.36f, 0.44f, 0.40f}, {0.15f, 0.20f, 0.20f}, smooth(-0.5f, 0.6f, v + 0.3f * u));
    for (uint32_t i = 0; i < 26; ++i) { // lights out of focus
        const float x = 2.0f * unit(hash(i, 1, noise_.seed())) - 1.0f;
        const float y = 1.3f * unit(hash(i, 2, noise_.seed())) - 0.6f;
        const float radius = 0.03f + 0.07f * unit(hash(i, 3, noise_.seed()));
        const float away = std::sqrt((u - x) * (u - x) + (v - y) * (v - y));
        const Colour tint =
            mix({0.95f, 0.80f, 0.50f}, {0.62f, 0.80f, 0.72f}, unit(hash(i, 4, noise_.seed())));
        colour = mix(colour, tint, 0.20f * (1 - smooth(radius * 0.90f, radius, away)));
    }
    return colour;
}

Colour Portrait::hair(float u, float v, float strands) const {
    const float thread = noise_.fractal(strands * 260.0f, v * 7.0f + u * 3.0f, 4, 20, 0.8f);
    const float lock = noise_.fractal(strands * 26.0f, v * 3.0f, 3, 30);
    const float light =
        0.35f + 1.15f * smooth(0.35f, 0.75f, lock) * smooth(0.5f, -0.3f, u + 0.4f * v);
    return scale(mix({0.16f, 0.09f, 0.05f}, {0.62f, 0.39f, 0.20f}, 0.75f * thread), light);
}

Colour Portrait::cloth(float u, float v) const {
    // Stitches in rows, each a small V.
    const float row = v * 70.0f, column = u * 62.0f;
    const float across = std::fabs(column - std::floor(column) - 0.5f);
    const float stitch = row - 0.9f * across - std::floor(row - 0.9f * across);
    const float light = 0.55f + 0.45f * std::sin(3.14159f * stitch) * (1.0f - 0.8f * across);
    const float fold = 0.55f + 0.75f * noise_.fractal(u * 3.0f, v * 2.0f, 3, 40) - 0.35f * u;
    const float wool = 0.9f + 0.2f * noise_.at(u * 900.0f, v * 900.0f, 44);
    return scale({0.20f, 0.30f, 0.46f}, 1.5f * light * fold * wool);
}

Colour Portrait::skin(float u, float v, float light, float shine) const {
    const float a = std::fabs(u);
    const float pores = noise_.fractal(u * 330.0f, v * 330.0f, 3, 60, 0.8f);
    const float mottled = noise_.fractal(u * 22.0f, v * 22.0f, 4, 64);
    Colour colour = mix({0.93f, 0.72f, 0.60f}, {0.88f, 0.60f, 0.49f}, mottled);
    colour = mix(colour, {0.86f, 0.46f, 0.40f},
                 0.45f * hill(a - 0.100f, v - 0.055f, 0.045f, 0.040f) +
                     0.30f * hill(u, v - 0.075f, 0.022f, 0.022f));
    const float freckle = noise_.fractal(u * 95.0f, v * 95.0f, 2, 68);
    colour = mix(colour, {0.66f, 0.38f, 0.27f},
                 0.55f * smooth(0.66f, 0.74f, freckle) * hill(u, v - 0.035f, 0.13f, 0.05f));
    const Colour shade = {light, light * (0.86f + 0.14f * light), light * (0.80f + 0.20f * light)};
    const float fine = 0.95f + 0.10f * pores;
    colour = {colour.red * shade.red * fine, colour.green * shade.green * fine,
              colour.blue * shade.blue * fine};
    return mix(colour, {1.0f, 0.97f, 0.93f}, 0.32f * shine * (0.6f + 0.8f * pores));
}

Colour Portrait::eye(float u, float v, const Colour& around) const {
    const float a = std::fabs(u) - eye_x, y = v - eye_y;
    const float across = a / 0.035f;
    const float open = std::max(0.0f, 1.0f - across * across);
    const float upper = -0.0155f * open - 0.002f * across, lower = 0.0105f * open;
    Colour colour = around;
    // The lid's crease, the shadow below, the lashes.
    colour = mix(colour, scale(around, 0.55f),
                 hill(0, y - upper + 0.010f, 1, 0.0035f) * smooth(1.25f, 0.9f, std::fabs(across)));
    if (std::fabs(across) > 1.15f)
        return colour;
    const float inside = smooth(upper - 0.0012f, upper + 0.0012f, y) *
                         smooth(lower + 0.0012f, lower - 0.0012f, y) *
                         smooth(1.0f, 0.96f, std::fabs(across));
    const float gaze = u > 0 ? a - 0.001f : a + 0.001f; // both look at the viewer
    const float r = std::sqrt(gaze * gaze + y * y), angle = std::atan2(y, gaze);
    const float fibres = noise_.fractal(angle * 9.0f, r * 160.0f, 3, u > 0 ? 80 : 84, 0.8f);
    Colour ball = scale({0.93f, 0.90f, 0.87f}, 0.98f - 0.35f * across * across);
    Colour iris = mix({0.13f, 0.20f, 0.16f}, {0.50f, 0.56f, 0.34f}, fibres);
    iris = mix(iris, {0.55f, 0.36f, 0.14f}, 0.7f * smooth(0.010f, 0.0055f, r));
    iris = scale(iris, smooth(0.0150f, 0.0118f, r) * 0.9f + 0.1f);
    ball = mix(ball, iris, smooth(0.0152f, 0.0140f, r));
    ball = mix(ball, {0.02f, 0.02f, 0.02f}, smooth(0.0062f, 0.0054f, r));
    ball = scale(ball, 1.0f - 0.55f * smooth(0.007f, 0.0f, y - upper)); // the lid's shadow
    const float spark = (u - (u > 0 ? eye_x : -eye_x)) + 0.0050f;
    ball = mix(ball, {1, 1, 1},
               smooth(0.0030f, 0.0020f, std::sqrt(spark * spark + (y + 0.0055f) * (y + 0.0055f))));
    colour = mix(colour, ball, inside);
    const float lash =
        smooth(0.0030f, 0.0008f, std::fabs(y - upper)) * smooth(1.12f, 0.9f, std::fabs(across));
    return mix(colour, {0.09f, 0.05f, 0.04f}, 0.92f * lash);
}

Colour Portrait::face(float u, float v) const {
    const float a = std::fabs(u);
    const Light light = light_on(relief, u, v);
    Colour colour = skin(u, v, light.soft, light.shine);
    // Lips.
    const float line = mouth_line(u);
    const float reach = smooth(0.060f, 0.046f, a);
    const float bow = 0.014f - 0.006f * std::exp(-u * u / 0.00010f) - 4.0f * u * u;
    const float lips = reach * smooth(line - bow - 0.002f, line - bow + 0.002f, v) *
                       smooth(line + 0.021f - 5.0f * u * u, line + 0.015f - 5.0f * u * u, v);
    const float creases = noise_.fractal(u * 210.0f, v * 30.0f, 2, 90);
    Colour lip = scale({0.74f, 0.33f, 0.33f},
                       light.soft * (0.80f + 0.30f * creases) * (v < line ? 0.82f : 1.06f));
    lip = mix(lip, {1.0f, 0.88f, 0.86f}, 0.5f * light.shine * (v > line ? 1.0f : 0.3f));
    colour = mix(colour, lip, 0.85f * lips);
    colour = mix(colour, {0.25f, 0.08f, 0.08f},
                 0.85f * reach * smooth(0.0022f, 0.0004f, std::fabs(v - line)));
    // Nostrils, brows, eyes.
    colour = mix(colour, {0.20f, 0.09f, 0.07f},
                 0.85f * smooth(0.55f, 0.9f, hill(a - 0.0155f, v - 0.0925f, 0.0105f, 0.0052f)));
    const float arch = -0.066f - 0.013f * std::cos((a - 0.080f) * 26.0f);
    const float brow = smooth(0.0085f, 0.0030f, std::fabs(v - arch)) * smooth(0.030f, 0.042f, a) *
                       smooth(0.134f, 0.108f, a);
    const float hairs = noise_.fractal((a + 0.9f * v) * 330.0f, (v - a) * 60.0f, 3, 94, 0.8f);
    colour = mix(colour, {0.22f, 0.13f, 0.08f}, 0.95f * brow * smooth(0.30f, 0.62f, hairs));
    return eye(u, v, colour);
}

Colour Portrait::at(float u, float v) const {
    const float wave = 0.02f * (noise_.fractal(v * 6.0f, u > 0 ? 3.0f : 9.0f, 3, 100) - 0.5f);
    const float back = std::sqrt(u * u / 0.0625f + (v + 0.035f) * (v + 0.035f) / 0.098f);
    const float fall = std::fabs(u) + wave - 0.225f - 0.035f * smooth(-0.05f, 0.35f, v);
    Colour colour = background(u, v);
    const float shoulder = 0.335f + 0.55f * u * u + 0.05f * smooth(0.16f, 0.0f, std::fabs(u));
    const bool is_hair =
        back + 2.0f * wave < 1.0f || (fall < 0 && v > -0.05f && v < 0.40f + 2.0f * wave);
    const float strands = std::atan2(u, 0.42f - v * 0.5f) + 0.6f * wave;
    if (is_hair)
        colour = scale(hair(u, v, strands), 0.8f);
    if (std::fabs(u) < 0.098f + 0.25f * std::max(0.0f, v - 0.27f) && v > 0.12f) {
        const Light light = light_on(
            [](float x, float) {
                return 0.13f * std::sqrt(std::max(0.0f, 1.0f - x * x / 0.0144f));
            },
            u, v);
        const float shadow = 0.50f + 0.50f * smooth(0.22f, 0.36f, v + 0.25f * u); // of the chin
        colour = skin(u, v, light.soft * shadow, 0.3f * light.shine * shadow);
    }
    if (v > shoulder)
        colour = cloth(u, v);
    if (const float edge = from_middle(u, v); edge < 1.0f)
        colour = mix(face(u, v), colour, smooth(0.985f, 1.0f, edge));
    // Hair over the forehead, parted.
    const float part = u + 0.05f, side = std::fabs(part);
    const float fringe = -0.205f + 0.62f * std::pow(side, 1.25f) +
                         0.02f * (noise_.fractal(u * 60.0f, 1.0f, 3, 104) - 0.5f);
    if (v < fringe + (side > 0.12f ? 0.9f * (side - 0.12f) : 0.0f) && back + 2.0f * wave < 1.0f)
        colour = hair(u, v, std::atan2(part, 0.10f - v));
    return colour;
}

} // namespace kirvo_sample
