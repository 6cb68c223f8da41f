// The rows of a 16-, 24- or 32-bit image read as 24-bit pixels, from wherever an operation takes
// them to lie.
#pragma once

#include "image/pixels.hpp"

namespace kirvo {

// LockedDib::holds_rows_at for operations that take every 32-bit image to carry masks: where they
// look further on than the header says, the bytes of the masks may be missing at the end.
bool holds_rows_after_masks(const LockedDib& dib, uint64_t offset);

class PixelReader {
  public:
    // The rows may lie in any distance from each other, and the last ones may run past the end of
    // the block; what is missing reads as 0.
    PixelReader(const LockedDib& dib, const Rows& rows);

    // False when there was no memory for a row.
    explicit operator bool() const { return static_cast<bool>(scratch_); }

    // The row, valid until the next call; a 24-bit one where it lies.
    const uint8_t* bgr(int64_t row) const;
    // Writes the row elsewhere, at another depth.
    void read(int64_t row, const PixelFormat& format, uint8_t* to) const {
        convert_row(format_, stored(row), format, to, width_);
    }

  private:
    const uint8_t* stored(int64_t row) const;

    PixelFormat format_;
    Rows rows_;
    size_t width_, row_bytes_;
    Scratch scratch_; // a row of 24-bit pixels, then a stored one
};

} // namespace kirvo
