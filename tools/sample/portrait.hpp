// A portrait-like picture from formulas: a face with skin, eyes and hair before a soft background,
// light from the upper left.
#pragma once

#include "painting.hpp"

namespace kirvo_sample {

class Portrait : public Painting {
  public:
    using Painting::Painting;

  private:
    Colour at(float u, float v) const override;
    float horizon() const override { return 0.47f; }
    float grain() const override { return 0.025f; }
    Colour background(float u, float v) const;
    Colour hair(float u, float v, float strands) const;
    Colour cloth(float u, float v) const;
    Colour skin(float u, float v, float light, float shine) const;
    Colour face(float u, float v) const;
    Colour eye(float u, float v, const Colour& around) const;
};

} // namespace kirvo_sample
