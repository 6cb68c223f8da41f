// A sharp picture from formulas: an enamelled sign with lettering on bricks, fine lines and a star
// that show what blur and sharpening do.
#pragma once

#include "painting.hpp"

namespace kirvo_sample {

class Lettering : public Painting {
  public:
    using Painting::Painting;

  private:
    Colour at(float u, float v) const override;
    float horizon() const override { return 0.5f; }
    float grain() const override { return 0.012f; }
    Colour bricks(float u, float v) const;
    Colour sign(float u, float v) const;
};

} // namespace kirvo_sample
