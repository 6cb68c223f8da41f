// Rows of hue operations on 24-bit pixels. Any count, any alignment; both rows may be the same.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kirvo {

struct HueRows {
    // Gives every pixel the hue, 0 to 359, at two thirds of its saturation if softer.
    void (*set)(uint8_t* to, const uint8_t* from, size_t pixels, int32_t hue, bool softer);
    // Turns every pixel's hue by 0 to 359 degrees.
    void (*turn)(uint8_t* to, const uint8_t* from, size_t pixels, int32_t degrees);
};

// The rows for this machine.
const HueRows& hue_rows();

extern const HueRows scalar_hue_rows;
namespace sse2 {
extern const HueRows hue_rows;
}
namespace avx2 {
extern const HueRows hue_rows;
}
namespace avx512 {
extern const HueRows hue_rows; // needs VBMI
}

} // namespace kirvo
