// Three rows of a plane at a time, moving up through it: what a 3 x 3 filter looks at.
#pragma once

#include "effects/frame.hpp"
#include "simd/kernels.hpp"

namespace kirvo {

// Fill is called as fill(row, to) for the rows -1 to height, each once and in this order. It writes
// the row's bytes to `to` and one pixel beyond both ends, so that it decides what lies outside.
template<typename Fill>
class Neighbourhood {
  public:
    Neighbourhood(size_t row_bytes, size_t pixel_bytes, const Fill& fill)
        : pitch_(row_bytes + 2 * pixel_bytes), margin_(pixel_bytes), buffer_(3 * uint64_t{pitch_}),
          fill_(fill) {}

    explicit operator bool() const { return static_cast<bool>(buffer_); }

    // To be called for row 0, then row 1, and so on.
    ThreeRows at(int32_t row) {
        if (row == 0) {
            fill_(-1, slot(-1));
            fill_(0, slot(0));
        }
        fill_(row + 1, slot(row + 1));
        for (int i = 0; i < 3; ++i)
            rows_[i] = slot(row - 1 + i);
        return rows_;
    }

  private:
    uint8_t* slot(int32_t row) const {
        return buffer_.data() + static_cast<size_t>((row + 3) % 3) * pitch_ + margin_;
    }

    size_t pitch_, margin_;
    Scratch buffer_;
    const Fill& fill_;
    const uint8_t* rows_[3] = {};
};

// The row of a rectangle that stands for a neighbour above or below it: the nearest one inside.
// Only a rectangle one row high has a row 1 of its own, beyond its top.
inline int32_t nearest_row(int32_t row, int32_t height) {
    return height == 1 && row == 1 ? 1 : std::clamp(row, 0, height - 1);
}

// Repeats the first and the last pixel of a row beyond its ends.
inline void extend_ends(uint8_t* row, size_t bytes, size_t pixel_bytes) {
    for (size_t i = 0; i < pixel_bytes; ++i) {
        row[static_cast<ptrdiff_t>(i) - static_cast<ptrdiff_t>(pixel_bytes)] = row[i];
        row[bytes + i] = row[bytes + i - pixel_bytes];
    }
}

// Rows of a result of 16, 24 or 32 bits that are written as 24-bit pixels.
class ResultRow {
  public:
    ResultRow(const RectOperation& operation, const RectResult& result)
        : result_(result), format_(operation.format()), width_(operation.width()),
          buffer_(format_.bits == 24 ? 0 : 3 * uint64_t{width_}) {}

    explicit operator bool() const { return static_cast<bool>(buffer_); }

    // Where the pixels of row r go.
    uint8_t* bgr(int32_t r) const { return format_.bits == 24 ? result_.row(r) : buffer_.data(); }
    // All of them have been written.
    void done(int32_t r) const {
        if (format_.bits != 24)
            pack_row(format_, buffer_.data(), result_.row(r), width_);
    }

  private:
    const RectResult& result_;
    PixelFormat format_;
    size_t width_;
    Scratch buffer_;
};

} // namespace kirvo
