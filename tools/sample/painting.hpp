// A picture whose colours a formula tells place by place. The same size and seed give the same
// picture.
#pragma once

#include "noise.hpp"

namespace kirvo_sample {

class Painting {
  public:
    Painting(int width, int height, uint32_t seed)
        : noise_(seed), width_(width), height_(height),
          middle_(0.5f * static_cast<float>(width) / static_cast<float>(height)) {}
    virtual ~Painting() = default;

    int width() const { return width_; }
    int height() const { return height_; }
    // Picture row y from the top: width pixels of blue, green, red.
    void render_row(int y, uint8_t* bgr) const {
        const float v = (static_cast<float>(y) + 0.5f) / static_cast<float>(height_) - horizon();
        for (int x = 0; x < width_; ++x, bgr += 3) {
            const float u = (static_cast<float>(x) + 0.5f) / static_cast<float>(height_) - middle_;
            put_pixel(bgr, at(u, v), grain(), x, y, noise_.seed());
        }
    }

  protected:
    // In units of the height, from the middle of the width and the horizon.
    virtual Colour at(float u, float v) const = 0;
    virtual float horizon() const = 0;
    virtual float grain() const = 0;

    Noise noise_;

  private:
    int width_, height_;
    float middle_;
};

} // namespace kirvo_sample
