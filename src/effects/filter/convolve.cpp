// The 3 x 3 filter whose kernel the caller sets.
#include "effects/filter/convolve.hpp"

#include "effects/filter/neighbourhood.hpp"

#include <bit>
#include <cstring>

namespace kirvo {

namespace {

// Turns division of numbers below 2^bits into a multiplication: with 2^(log - 1) < divisor <= 2^log
// the multiplier exceeds 2^(bits + log) / divisor by less than 2^log / divisor, too little to
// reach the next whole quotient.
void prepare_division(Convolution& ready, int64_t divisor, int bits) {
    // A larger divisor gives 0 as this one does.
    const auto d = static_cast<uint64_t>(std::min(divisor, int64_t{1} << bits));
    const auto log = static_cast<int>(std::bit_width(d - 1));
    ready.divides = d > 1;
    ready.shift = bits + log;
    ready.multiplier = static_cast<uint32_t>(((uint64_t{1} << ready.shift) + d - 1) / d);
}

} // namespace

Convolver::Convolver(const Kernel3x3& kernel) {
    // Negating both leaves the quotient as it is.
    const int sign = kernel.divisor < 0 ? -1 : 1;
    divisor_ = int64_t{sign} * kernel.divisor;
    int64_t above = 0, below = 0, largest = 0;
    for (int i = 0; i < 9; ++i) {
        weight_[i] = int64_t{sign} * kernel.weight[i];
        above += std::max<int64_t>(weight_[i], 0);
        below += std::max<int64_t>(-weight_[i], 0);
        largest = std::max(largest, std::abs(weight_[i]));
    }
    if (above <= INT16_MAX / 255 && below <= INT16_MAX / 255)
        width_ = Width::bits16;
    else if (largest <= INT16_MAX)
        width_ = Width::bits32;
    else
        width_ = Width::bits64;
    if (width_ == Width::bits64)
        return;
    for (int i = 0; i < 9; ++i)
        ready_.weight[i] = static_cast<int16_t>(weight_[i]);
    prepare_division(ready_, divisor_, width_ == Width::bits16 ? 15 : 31);
}

void Convolver::run(uint8_t* to, ThreeRows rows, size_t count) const {
    if (width_ == Width::bits16)
        kernels().convolve16(to, rows, count, ready_);
    else if (width_ == Width::bits32)
        kernels().convolve32(to, rows, count, ready_);
    else
        run64(to, rows, count);
}

void Convolver::run64(uint8_t* to, ThreeRows rows, size_t count) const {
    for (size_t i = 0; i < count; ++i) {
        int64_t sum = 0;
        for (int k = 0; k < 9; ++k)
            sum += weight_[k] * (rows[k / 3] + i)[3 * (k % 3) - 3];
        to[i] = static_cast<uint8_t>(std::clamp<int64_t>(sum / divisor_, 0, 255));
    }
}

namespace {

Kernel3x3 current_kernel = {};

// Fills row and margins with the pixels around a rectangle's row as 24-bit pixels; black, which
// adds nothing, outside the image.
class ImageRow {
  public:
    explicit ImageRow(const RectOperation& operation)
        : operation_(operation), format_(operation.format()),
          image_row_(bottom_row(operation.source().height(), operation.rect())),
          left_(operation.rect().x > 0 ? 1 : 0),
          right_(operation.rect().x + operation.rect().width < operation.source().width() ? 1 : 0) {
    }

    void operator()(int32_t row, uint8_t* to) const {
        const int64_t stored = image_row_ + row;
        const bool inside = stored >= 0 && stored < operation_.source().height();
        std::memset(to - 3, 0, 3 * (operation_.width() + 2));
        if (inside)
            unpack_row(format_, operation_.row(row) - left_ * format_.bytes(), to - 3 * left_,
                       operation_.width() + left_ + right_);
    }

  private:
    const RectOperation& operation_;
    PixelFormat format_;
    int64_t image_row_;
    size_t left_, right_; // pixels of the image beside the rectangle
};

} // namespace

} // namespace kirvo

using namespace kirvo;

void WINAPI SetFilter3x3(int32_t k0, int32_t k1, int32_t k2, int32_t k3, int32_t k4, int32_t k5,
                         int32_t k6, int32_t k7, int32_t k8, int32_t divisor) {
    current_kernel = {{k0, k1, k2, k3, k4, k5, k6, k7, k8}, divisor == 0 ? 1 : divisor};
}

HGLOBAL WINAPI DibFilter3x3(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                            int32_t* status) {
    RectOperation operation(dib, {x, y, width, height}, check_rect_16_to_32);
    operation.require(current_kernel.divisor != 0);
    if (!operation.passed(status))
        return nullptr;
    const Convolver convolver(current_kernel);
    const size_t bytes = 3 * operation.width();
    const ImageRow fill(operation);
    Neighbourhood neighbourhood(bytes, 3, fill);
    RectResult result(operation, operation.source().bits());
    ResultRow out(operation, result);
    if (!neighbourhood || !result || !out) {
        report(status, Status::no_memory);
        return nullptr;
    }
    operation.each_row([&](int32_t r) {
        convolver.run(out.bgr(r), neighbourhood.at(r), bytes);
        out.done(r);
    });
    return result.release();
}
