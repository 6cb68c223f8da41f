// A photo-like landscape from formulas: sky and clouds, snowy mountains behind a forest, a lake and
// a meadow, with detail down to the pixel and some sensor noise. The same size and seed give the
// same picture.
#pragma once

#include "noise.hpp"

#include <array>
#include <cstdint>
#include <vector>

namespace kirvo_sample {

class Scene {
  public:
    Scene(int width, int height, uint32_t seed);

    int width() const { return width_; }
    int height() const { return height_; }
    // Picture row y from the top: width pixels of blue, green, red.
    void render_row(int y, uint8_t* bgr) const;

  private:
    static constexpr int ridge_count = 4; // three mountain chains and the forest, far to near
    struct Column {                       // heights in the picture
        std::array<float, ridge_count> ridges;
        float bank; // where the meadow begins
    };

    Colour sky(float x, float y) const;
    Colour mountain(float x, float y, float ridge, int layer) const;
    Colour forest(float x, float y, float top) const;
    Colour water(float x, float y) const;
    Colour meadow(float x, float y) const;
    Colour land_or_sky(float x, float y, const Column& column) const;

    float ridge(float x, int layer) const;
    const Column& column_at(float x) const;

    int width_, height_;
    Noise noise_;
    std::vector<Column> columns_;
};

} // namespace kirvo_sample
