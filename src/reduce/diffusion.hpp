// Error diffusion to the fixed 256- and 16-colour palettes, in a serpentine over the stored rows.
#pragma once

#include "image/memory.hpp"

namespace kirvo {

// What the rows so far leave to the next one. An image is fed row by row from its first stored row,
// with one of the two quantisers.
class ErrorDiffusion {
  public:
    explicit ErrorDiffusion(size_t width);

    // False when there was no memory for the errors.
    explicit operator bool() const { return static_cast<bool>(scratch_); }

    // One row of 24-bit pixels to the index of each pixel.
    void to_256(const uint8_t* bgr, uint8_t* indices);
    void to_16(const uint8_t* bgr, uint8_t* indices);

  private:
    template<typename Quantiser>
    void quantise_row(const uint8_t* bgr, uint8_t* indices);
    void add_errors(const uint8_t* bgr);

    size_t width_;
    Scratch scratch_;
    // Cells in the order of the pixel bytes, with a pixel of zeros before and after them.
    int16_t* values_;         // of the row in work: pixel and errors, then what is left of them
    int16_t* errors_;         // left by the row before
    ptrdiff_t direction_ = 1; // of the row before
};

} // namespace kirvo
