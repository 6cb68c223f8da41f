// A portrait-like picture from formulas: a face with skin, eyes and hair before a soft background,
// light from the upper left. The same size and seed give the same picture.
#pragma once

#include "noise.hpp"

namespace kirvo_sample {

class Portrait {
  public:
    Portrait(int width, int height, uint32_t seed)
        : width_(width), height_(height), noise_(seed),
          middle_(0.5f * static_cast<float>(width) / static_cast<float>(height)) {}

    int width() const { return width_; }
    int height() const { return height_; }
    // Picture row y from the top: width pixels of blue, green, red.
    void render_row(int y, uint8_t* bgr) const;

  private:
    // In units of the height, from the middle of the face.
    Colour at(float u, float v) const;
    Colour background(float u, float v) const;
    Colour hair(float u, float v, float strands) const;
    Colour cloth(float u, float v) const;
    Colour skin(float u, float v, float light, float shine) const;
    Colour face(float u, float v) const;
    Colour eye(float u, float v, const Colour& around) const;

    int width_, height_;
    Noise noise_;
    float middle_;
};

} // namespace kirvo_sample
