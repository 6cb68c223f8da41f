// New images of one colour or of colours that change evenly.
//
// Channels go under the masks of the new image. Those of 16- and 32-bit images are zero and stay
// so, which makes such images black: only 24-bit ones have anything to write.
#include "image/rect_operation.hpp"

#include <cstring>

using namespace kirvo;

namespace {

// Values from start to end, spread over count places: start + (end - start) * i / (count - 1),
// truncating, for i = 0, 1, ... Without a division a step.
class Ramp {
  public:
    Ramp(uint8_t start, uint8_t end, int32_t count)
        : value_(start), sign_(end < start ? -1 : 1), places_(count - 1) {
        const int32_t distance = std::abs(end - start);
        if (places_ > 0) {
            whole_ = sign_ * (distance / places_);
            rest_ = distance % places_;
        }
    }
    uint8_t value() const { return static_cast<uint8_t>(value_); }
    void step() {
        value_ += whole_;
        carried_ += rest_;
        if (carried_ >= places_) {
            carried_ -= places_;
            value_ += sign_;
        }
    }

  private:
    int32_t value_, sign_, places_, whole_ = 0;
    int64_t rest_ = 0, carried_ = 0;
};

class ColourRamp {
  public:
    ColourRamp(const Rgb& start, const Rgb& end, int32_t count)
        : red_(start.red, end.red, count), green_(start.green, end.green, count),
          blue_(start.blue, end.blue, count) {}
    Rgb value() const { return {red_.value(), green_.value(), blue_.value()}; }
    void step() {
        red_.step();
        green_.step();
        blue_.step();
    }

  private:
    Ramp red_, green_, blue_;
};

// Writes a row of 24-bit pixels from start to end.
void ramp_row(uint8_t* row, const Rgb& start, const Rgb& end, int32_t width) {
    ColourRamp ramp(start, end, width);
    for (int32_t i = 0; i < width; ++i, row += 3, ramp.step()) {
        const Rgb colour = ramp.value();
        row[0] = colour.blue;
        row[1] = colour.green;
        row[2] = colour.red;
    }
}

struct Corners {
    Rgb top_left, top_right, bottom_left, bottom_right;
};

Status check(int32_t width, int32_t height, int32_t bits) {
    const bool valid = width >= 1 && height >= 1 && (bits == 16 || bits == 24 || bits == 32);
    return valid ? Status::ok : Status::bad_parameter;
}

OwnedBlock new_image(int32_t width, int32_t height, int32_t bits) {
    return new_dib(width, height, bits, bits == 24 ? Content::any : Content::zero);
}

// A bilinear gradient. Rows that are all the same are copied.
Status gradient(int32_t width, int32_t height, int32_t bits, const Corners& corners,
                OwnedBlock& result) {
    const Status status = check(width, height, bits);
    if (status != Status::ok)
        return status;
    result = new_image(width, height, bits);
    const LockedDib dib(result.get());
    if (!dib)
        return Status::no_memory;
    if (bits != 24)
        return Status::ok;
    const Rows rows = dib.rows(RowStart::after_header);
    const bool alike =
        corners.top_left == corners.bottom_left && corners.top_right == corners.bottom_right;
    ColourRamp left(corners.bottom_left, corners.top_left, height);
    ColourRamp right(corners.bottom_right, corners.top_right, height);
    const auto stride = static_cast<size_t>(rows.stride), used = 3 * static_cast<size_t>(width);
    for (int32_t row = 0; row < height; ++row, left.step(), right.step()) {
        if (alike && row > 0) {
            std::memcpy(rows[row], rows[0], stride);
            continue;
        }
        ramp_row(rows[row], left.value(), right.value(), width);
        std::memset(rows[row] + used, 0, stride - used);
    }
    return Status::ok;
}

// Writes a row of 24-bit pixels of one colour: what is written is copied, each time as much again.
void fill_row(uint8_t* row, const Rgb& colour, size_t bytes) {
    row[0] = colour.blue;
    row[1] = colour.green;
    row[2] = colour.red;
    for (size_t done = 3; done < bytes; done *= 2)
        std::memcpy(row + done, row, std::min(done, bytes - done));
}

Status horizontal_gradient(int32_t width, int32_t height, int32_t bits, uint32_t start,
                           uint32_t end, OwnedBlock& result) {
    const Rgb left = rgb_of(start), right = rgb_of(end);
    return gradient(width, height, bits, {left, right, left, right}, result);
}

// What turning a gradient from left to right gives, in its memory and with its messages, which count
// the rows of the image that is turned.
Status vertical_gradient(int32_t width, int32_t height, int32_t bits, const Rgb& top,
                         const Rgb& bottom, OwnedBlock& result) {
    const Status status = check(width, height, bits);
    if (status != Status::ok)
        return status;
    const OwnedBlock lying = new_image(height, width, bits);
    OwnedBlock made = lying ? new_image(width, height, bits) : OwnedBlock();
    const LockedDib dib(made.get());
    if (!dib)
        return Status::no_memory;
    const Rows rows = dib.rows(RowStart::after_header);
    PassProgress progress(width);
    ColourRamp ramp(top, bottom, height);
    for (int32_t row = 0; row < height; ++row, ramp.step()) {
        progress.reach(int64_t{width} * (row + 1) / height - 1);
        if (bits == 24)
            fill_row(rows[height - 1 - row], ramp.value(), 3 * static_cast<size_t>(width));
    }
    progress.finish();
    result = std::move(made);
    return Status::ok;
}

} // namespace

HGLOBAL WINAPI Dib24Solid(int32_t width, int32_t height, int32_t bits, uint32_t colour,
                          int32_t* status) {
    return Dib24Gradation1(width, height, bits, colour, colour, status);
}

HGLOBAL WINAPI Dib24Gradation1(int32_t width, int32_t height, int32_t bits, uint32_t start,
                               uint32_t end, int32_t* status) {
    OwnedBlock result;
    report(status, horizontal_gradient(width, height, bits, start, end, result));
    return result.release();
}

HGLOBAL WINAPI Dib24Gradation2(int32_t width, int32_t height, int32_t bits, uint32_t start,
                               uint32_t end, int32_t* status) {
    OwnedBlock result;
    report(status, vertical_gradient(width, height, bits, rgb_of(start), rgb_of(end), result));
    return result.release();
}

HGLOBAL WINAPI Dib24Gradation3(int32_t width, int32_t height, int32_t bits, uint32_t top_left,
                               uint32_t top_right, uint32_t bottom_left, uint32_t bottom_right,
                               int32_t* status) {
    OwnedBlock result;
    report(status, gradient(width, height, bits,
                            {rgb_of(top_left), rgb_of(top_right), rgb_of(bottom_left),
                             rgb_of(bottom_right)},
                            result));
    return result.release();
}
