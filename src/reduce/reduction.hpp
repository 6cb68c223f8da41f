// The frame of the conversions from 24 or 32 bits to a colour table: checks, the locked source, the
// new image and the progress. A conversion adds its colours and a function over rows.
#pragma once

#include "core/pixel_reader.hpp"
#include "core/progress.hpp"

#include <optional>

namespace kirvo {

// Where the rows of both images lie.
enum class ReductionRows {
    by_header, // biSize + PaletteSize, at the usual stride
    // biSize + 4 * biClrUsed, at 32 bits 12 bytes further on, at a stride that keeps 16 bits of a
    // row's bit count. The new image's biClrUsed is set.
    counted,
};

class Reduction {
  public:
    // bits is the new image's depth, 4 or 8.
    Reduction(HGLOBAL source, ReductionRows rows, int32_t bits);

    Status status() const { return status_; }
    void fail(Status status) { status_ = status; }
    size_t width() const { return static_cast<size_t>(source_.width()); }

    // What follows is for status ok. Entries are 0xRRGGBB, as many as the table holds.
    void set_colours(const uint32_t* colours);
    // Calls work(bgr, to, row), which answers a status, for every stored row from 24-bit pixels to
    // the new image, until one fails.
    template<typename Work>
    void each_row(const Work& work) {
        each_step(source_.height(), [&](int32_t row) {
            status_ = work(reader_->bgr(row), rows_[row], row);
            return status_ == Status::ok;
        });
    }

    // Ends the conversion: the new image, or null and nothing left of it.
    HGLOBAL answer(int32_t* status);

  private:
    LockedDib source_;
    Status status_;
    OwnedBlock block_;
    std::optional<LockedDib> result_;
    std::optional<PixelReader> reader_;
    Rows rows_ = {};
};

// Rows of a 4-bit image from one index a byte; the spare nibble of an odd width is 0.
void pack_nibbles(const uint8_t* indices, uint8_t* to, size_t width);

} // namespace kirvo
