#include "lettering.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace kirvo_sample {

namespace {

// Strokes from point to point, each a column 0 to 4 and a row 0 to 6; a space lifts the pen.
struct Glyph {
    char letter;
    const char* strokes;
};

constexpr Glyph glyphs[] = {
    {'A', "062046 1434"},
    {'B', "06003041423303 33444635 3606"},
    {'C', "4130100105163645"},
    {'D', "0600304144453606"},
    {'E', "40000646 0333"},
    {'F', "400006 0333"},
    {'G', "4130100105163645 4323"},
    {'H', "0006 4046 0343"},
    {'I', "2026"},
    {'K', "0006 400346 "},
    {'L', "000646"},
    {'M', "0600234046"},
    {'N', "06004640"},
    {'O', "103041453616050110"},
    {'P', "060030414233 3303"},
    {'R', "060030414233 3303 2346"},
    {'S', "4130100102134344 44453616 1605"},
    {'T', "0040 2026"},
    {'U', "000516364540"},
    {'V', "002640"},
    {'X', "0046 4006"},
    {'Y', "002340 2326"},
    {'Z', "00400646"},
    {'0', "103041453616050110"},
    {'1', "112026"},
    {'2', "01103041420646"},
    {'4', "36300444"},
    {'8', "103041423313020110 13040516364544 4433"},
    {':', "2122 2425"},
    {'-', "1333"},
};

const char* strokes_of(char letter) {
    for (const Glyph& glyph : glyphs) {
        if (glyph.letter == letter)
            return glyph.strokes;
    }
    return "";
}

struct Point {
    float x, y;
};

float distance(Point p, Point a, Point b) {
    const float bx = b.x - a.x, by = b.y - a.y, px = p.x - a.x, py = p.y - a.y;
    const float length = bx * bx + by * by;
    const float t = length > 0 ? std::clamp((px * bx + py * by) / length, 0.0f, 1.0f) : 0.0f;
    return std::hypot(px - t * bx, py - t * by);
}

float distance(Point p, const char* strokes) {
    float nearest = 9;
    for (; strokes[0] != '\0' && strokes[1] != '\0'; strokes += 2) {
        if (strokes[0] == ' ') {
            --strokes; // the next pair begins behind it
            continue;
        }
        if (strokes[2] == ' ' || strokes[2] == '\0')
            continue;
        const auto at = [&](int i) {
            return Point{static_cast<float>(strokes[i] - '0'),
                         static_cast<float>(strokes[i + 1] - '0')};
        };
        nearest = std::min(nearest, distance(p, at(0), at(2)));
    }
    return nearest;
}

// Letters of 7 units with gaps, 6.2 to the next. The distance is in units of the height.
float text_distance(const char* text, float u, float v, float height) {
    constexpr float advance = 6.2f;
    const float unit_size = height / 7.0f;
    const float length = static_cast<float>(std::strlen(text)) * advance - (advance - 4.0f);
    const float x = u / unit_size + 0.5f * length, y = v / unit_size + 3.0f;
    float nearest = 9;
    const int at = static_cast<int>(std::floor((x + 1.1f) / advance));
    for (int i = std::max(0, at - 1); i <= at + 1 && i < static_cast<int>(std::strlen(text)); ++i)
        nearest = std::min(nearest,
                           distance({x - static_cast<float>(i) * advance, y}, strokes_of(text[i])));
    return nearest * unit_size;
}

constexpr float sign_width = 0.60f, sign_height = 0.36f, corner = 0.045f;

// Below 0 inside a rectangle with round corners.
float rounded(float u, float v, float width, float height, float radius) {
    const float x = std::max(std::fabs(u) - width + radius, 0.0f);
    const float y = std::max(std::fabs(v) - height + radius, 0.0f);
    return std::hypot(x, y) - radius;
}

} // namespace

Colour Lettering::bricks(float u, float v) const {
    const float row = std::floor((v + 2.0f) / 0.075f);
    const float shift = std::fmod(row, 2.0f) * 0.0925f;
    const float column = std::floor((u + shift + 4.0f) / 0.185f);
    const float x = (u + shift + 4.0f) - column * 0.185f, y = (v + 2.0f) - row * 0.075f;
    const float rough = 0.004f * (noise_.fractal(u * 60.0f, v * 60.0f, 3, 10) - 0.5f);
    const float edge = std::min(std::min(x, 0.185f - x), std::min(y, 0.075f - y)) + rough;
    const uint32_t which =
        hash(static_cast<uint32_t>(row), static_cast<uint32_t>(column), noise_.seed());
    const float grain = noise_.fractal(u * 240.0f, v * 240.0f, 4, 14, 0.8f);
    const Colour clay = mix({0.60f, 0.27f, 0.19f}, {0.44f, 0.20f, 0.17f}, unit(which));
    const Colour mortar = scale({0.66f, 0.63f, 0.57f}, 0.70f + 0.5f * grain);
    const float lit = 0.75f + 0.5f * grain + 0.10f * smooth(0.012f, 0.004f, y) -
                      0.20f * smooth(0.012f, 0.004f, 0.075f - y);
    return mix(mortar, scale(clay, lit), smooth(0.0045f, 0.0065f, edge));
}

Colour Lettering::sign(float u, float v) const {
    const float sheen = 0.92f + 0.16f * noise_.fractal(u * 2.0f, v * 3.0f, 3, 20) - 0.10f * v;
    const Colour blue = scale({0.05f, 0.16f, 0.40f}, sheen),
                 white = scale({0.96f, 0.95f, 0.91f}, sheen);
    const Colour red = scale({0.78f, 0.11f, 0.10f}, sheen), black{0.07f, 0.07f, 0.08f};
    constexpr float soft = 0.0006f; // of the edges: sharp to the pixel
    const auto paint = [&](Colour& under, const Colour& over, float away) {
        under = mix(under, over, smooth(soft, -soft, away));
    };
    Colour colour = blue;
    paint(colour, white,
          std::fabs(rounded(u, v, sign_width - 0.025f, sign_height - 0.025f, corner - 0.012f)) -
              0.004f);
    paint(colour, white, text_distance("KIRVO", u, v + 0.165f, 0.215f) - 0.0165f);
    paint(colour, white,
          text_distance("SHARP LETTERING OF ALL SIZES", u, v - 0.015f, 0.030f) - 0.0021f);
    paint(colour, red, rounded(u + 0.16f, v - 0.108f, 0.375f, 0.040f, 0.012f));
    paint(colour, white,
          text_distance("PLATFORM 2 - 10:48", u + 0.16f, v - 0.108f, 0.042f) - 0.0034f);
    // A test field: bars that grow finer, and lines of text that do.
    paint(colour, white, rounded(u + 0.16f, v - 0.235f, 0.375f, 0.060f, 0.006f));
    if (rounded(u + 0.16f, v - 0.235f, 0.365f, 0.052f, 0.004f) < 0) {
        const float x = (u + 0.525f) / 0.73f;
        const float bars = std::sin(3.14159f * 2.0f * (8.0f * x + 60.0f * x * x));
        if (v < 0.222f)
            paint(colour, black, -bars * 0.002f);
        paint(colour, black,
              text_distance("AN EXACT LINE", u + 0.375f, v - 0.262f, 0.022f) - 0.0016f);
        paint(colour, black,
              text_distance("AND A FINER LINE OF TEXT", u - 0.005f, v - 0.248f, 0.015f) - 0.0011f);
        paint(colour, black,
              text_distance("AND THE FINEST OF ALL LINES", u - 0.005f, v - 0.272f, 0.011f) -
                  0.0008f);
    }
    const float x = u - 0.40f, y = v - 0.185f, r = std::hypot(x, y); // the star
    paint(colour, white, r - 0.130f);
    if (r < 0.122f && r > 0.004f)
        paint(colour, black, std::sin(std::atan2(y, x) * 24.0f) * r / 24.0f);
    for (const float side : {-1.0f, 1.0f}) { // screws
        const float sx = u - side * (sign_width - 0.055f), sy = v + sign_height - 0.055f;
        const float away = std::hypot(sx, sy);
        paint(colour, scale({0.75f, 0.74f, 0.70f}, 1.0f - 12.0f * (sx + sy)), away - 0.013f);
        if (away < 0.012f)
            paint(colour, black, std::fabs(sx * 0.8f + sy * 0.6f) - 0.0016f);
    }
    return colour;
}

Colour Lettering::at(float u, float v) const {
    const float edge = rounded(u, v, sign_width, sign_height, corner);
    if (edge < -0.0006f)
        return sign(u, v);
    const float shadow = rounded(u - 0.012f, v - 0.018f, sign_width, sign_height, corner);
    const Colour wall = scale(bricks(u, v), 0.45f + 0.55f * smooth(0.0f, 0.03f, shadow));
    return mix(scale(sign(u, v), 0.6f), wall, smooth(-0.0006f, 0.0006f, edge));
}

} // namespace kirvo_sample
