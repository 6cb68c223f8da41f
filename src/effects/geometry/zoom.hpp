// A resize: which source pixels a new image is made of.
#pragma once

#include "image/dib.hpp"
#include "image/progress.hpp"

namespace kirvo {

class Zoom {
  public:
    // Coordinates cut to signed 16 bits wrap and may lie outside the picture.
    Zoom(const LockedDib& source, const Rect& rect, int32_t width, int32_t height, bool cut16)
        : source_(source), rect_(rect), width_(width), height_(height),
          scale_x_(static_cast<double>(width) / rect.width),
          scale_y_(static_cast<double>(height) / rect.height), cut16_(cut16) {}

    const LockedDib& source() const { return source_; }
    int32_t width() const { return width_; }
    int32_t height() const { return height_; }
    // Size of the box of source pixels under a pixel of a reduced image.
    int32_t box_width() const { return ceil_div(rect_.width, width_); }
    int32_t box_height() const { return ceil_div(rect_.height, height_); }
    bool enlarges() const { return scale_x_ > 1.0 || scale_y_ > 1.0; }

    // Source column of column i, source picture row of picture row j.
    int32_t column(int32_t i) const {
        return into(static_cast<int32_t>(i / scale_x_ + rect_.x), source_.width());
    }
    int32_t row(int32_t j) const {
        return into(rect_.y + static_cast<int32_t>(j / scale_y_), source_.height());
    }

    // Calls make(row, source picture row) for the stored rows of the result from the top of the
    // picture downward, and reports the progress.
    template<typename Make>
    void each_row(const Rows& to, Make make) const {
        each_step(height_, [&](int32_t j) { make(to[height_ - 1 - j], row(j)); });
    }

  private:
    static int32_t ceil_div(int32_t a, int32_t b) {
        return static_cast<int32_t>((int64_t{a} + b - 1) / b);
    }
    int32_t into(int32_t coordinate, int32_t size) const {
        return cut16_ ? static_cast<int16_t>(coordinate) : std::clamp(coordinate, 0, size - 1);
    }

    const LockedDib& source_;
    Rect rect_;
    int32_t width_, height_;
    double scale_x_, scale_y_;
    bool cut16_;
};

// Each fills the rows of a new image; false without the memory to work in.
bool zoom_nearest(const Zoom& zoom, const Rows& to);
// For 16, 24 and 32 bits and a zoom that does not enlarge.
bool zoom_box(const Zoom& zoom, const Rows& to);

} // namespace kirvo
