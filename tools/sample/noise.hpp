// What the sample pictures are made of: colours, transitions and noise that looks like nature.
#pragma once

#include <cstdint>

namespace kirvo_sample {

struct Colour {
    float red, green, blue; // 0 to 1
};

uint32_t hash(uint32_t x, uint32_t y, uint32_t z);
// 0 to 1 from a hash.
float unit(uint32_t bits);
float lerp(float from, float to, float t);
// From 0 at low to 1 at high, without corners.
float smooth(float low, float high, float value);
Colour mix(const Colour& from, const Colour& to, float t);
Colour scale(const Colour& colour, float by);

class Noise {
  public:
    explicit Noise(uint32_t seed) : seed_(seed) {}

    // Value noise from 0 to 1, one lattice point per unit.
    float at(float x, float y, uint32_t layer) const;
    // Octaves of it, each of half the size and roughness times the strength; 0 to 1.
    float fractal(float x, float y, int octaves, uint32_t layer, float roughness = 0.5f) const;
    uint32_t seed() const { return seed_; }

  private:
    uint32_t seed_;
};

// A pixel of blue, green and red with a sensor's grain, as strong as said.
void put_pixel(uint8_t* bgr, const Colour& colour, float grain, int x, int y, uint32_t seed);

} // namespace kirvo_sample
