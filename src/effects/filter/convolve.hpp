// A 3 x 3 kernel of any 32-bit weights over rows of pixels.
#pragma once

#include "simd/kernels.hpp"

namespace kirvo {

struct Kernel3x3 {
    int32_t weight[9]; // row by row, the row stored before the pixel's first
    int32_t divisor;   // not 0
};

// Chooses, once for an image, the narrowest arithmetic that holds every sum of the kernel.
class Convolver {
  public:
    explicit Convolver(const Kernel3x3& kernel);

    // Count bytes of 24-bit pixels, each the clamped quotient of its weighted sum.
    void run(uint8_t* to, ThreeRows rows, size_t count) const;

  private:
    enum class Width { bits16, bits32, bits64 };

    void run64(uint8_t* to, ThreeRows rows, size_t count) const;

    // The kernel with the divisor made positive.
    int64_t weight_[9];
    int64_t divisor_;
    Width width_;
    Convolution ready_ = {};
};

} // namespace kirvo
