// Turns in place: upside down, left to right, both.
#include "image/rect_operation.hpp"
#include "image/stream.hpp"
#include "simd/kernels.hpp"

#include <algorithm>
#include <cstring>

namespace kirvo {

namespace {

RectOperation turn_of(HGLOBAL dib, const Rect& rect) {
    return RectOperation(dib, rect, check_rect_8_to_32, RowStart::after_40);
}

// Pixels of whole bytes in one direction or the other.
class PixelRun {
  public:
    explicit PixelRun(const RectOperation& operation)
        : bytes_(static_cast<size_t>(operation.source().bits() / 8)), width_(operation.width()),
          exchange_(kernels().exchange_reversed[bytes_ - 1]) {}

    size_t size() const { return width_ * bytes_; }
    void mirror(uint8_t* row) const { exchange_(row, row + size(), width_ / 2); }
    void exchange_mirrored(uint8_t* a, uint8_t* b) const { exchange_(a, b + size(), width_); }

  private:
    size_t bytes_, width_;
    Kernels::Exchange exchange_;
};

// Calls exchange(lower row, upper row, spare row) for the pairs of rows from the outermost inward,
// and middle(row) for the one that an odd height leaves.
template<typename Exchange, typename Middle>
Status exchange_rows(const RectOperation& operation, Exchange exchange, Middle middle) {
    if (operation.status() != Status::ok)
        return operation.status();
    const int32_t height = operation.rect().height;
    const Scratch spare(PixelRun(operation).size());
    if (!spare)
        return Status::no_memory;
    constexpr Pass half_the_rows[] = {{0, 200}};
    PassProgress progress(height, half_the_rows);
    for (int32_t i = 0; i < height / 2; ++i) {
        progress.tell(i);
        exchange(operation.row(i), operation.row(height - 1 - i), spare.data());
    }
    if (height % 2 != 0)
        middle(operation.row(height / 2));
    progress.finish();
    return Status::ok;
}

// The processor does not foresee which rows come next.
Status flip(const RectOperation& operation) {
    if (operation.status() != Status::ok)
        return operation.status();
    constexpr size_t part = 1024, in_caches = 4 << 20;
    const size_t size = PixelRun(operation).size();
    const bool outgrows_caches = size * static_cast<size_t>(operation.rect().height) > in_caches;
    return exchange_rows(
        operation,
        [&](uint8_t* lower, uint8_t* upper, uint8_t*) {
            if (!outgrows_caches) {
                std::swap_ranges(lower, lower + size, upper);
                return;
            }
            for (size_t at = 0, now; at < size; at += now) {
                now = std::min(part, size - at);
                prefetch(lower + at + operation.stride(), now);
                prefetch(upper + at - operation.stride(), now);
                std::swap_ranges(lower + at, lower + at + now, upper + at);
            }
        },
        [](uint8_t*) {});
}

Status mirror(const RectOperation& operation) {
    if (operation.status() != Status::ok)
        return operation.status();
    const PixelRun run(operation);
    operation.each_row([&](int32_t r) { run.mirror(operation.row(r)); });
    return Status::ok;
}

Status flip_mirror(const RectOperation& operation) {
    return exchange_rows(
        operation,
        [&](uint8_t* lower, uint8_t* upper, uint8_t*) {
            PixelRun(operation).exchange_mirrored(lower, upper);
        },
        [&](uint8_t* row) { PixelRun(operation).mirror(row); });
}

} // namespace

} // namespace kirvo

using namespace kirvo;

int32_t WINAPI Dib24Flip(HGLOBAL dib, int32_t left, int32_t top, int32_t width, int32_t height) {
    return code(flip(turn_of(dib, {left, top, width, height})));
}

int32_t WINAPI Dib24Mirror(HGLOBAL dib, int32_t left, int32_t top, int32_t width, int32_t height) {
    return code(mirror(turn_of(dib, {left, top, width, height})));
}

int32_t WINAPI Dib24FlipMirror(HGLOBAL dib, int32_t left, int32_t top, int32_t width,
                               int32_t height) {
    return code(flip_mirror(turn_of(dib, {left, top, width, height})));
}
