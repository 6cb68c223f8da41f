// A sharp picture from formulas: an enamelled sign with lettering on bricks, fine lines and a star
// that show what blur and sharpening do. The same size and seed give the same picture.
#pragma once

#include "noise.hpp"

namespace kirvo_sample {

class Lettering {
  public:
    Lettering(int width, int height, uint32_t seed)
        : width_(width), height_(height), noise_(seed),
          middle_(0.5f * static_cast<float>(width) / static_cast<float>(height)) {}

    int width() const { return width_; }
    int height() const { return height_; }
    // Picture row y from the top: width pixels of blue, green, red.
    void render_row(int y, uint8_t* bgr) const;

  private:
    // In units of the height, from the middle of the picture.
    Colour at(float u, float v) const;
    Colour bricks(float u, float v) const;
    Colour sign(float u, float v) const;

    int width_, height_;
    Noise noise_;
    float middle_;
};

} // namespace kirvo_sample
