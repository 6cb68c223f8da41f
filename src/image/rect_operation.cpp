#include "image/rect_operation.hpp"

#include "simd/kernels.hpp"

namespace kirvo {

namespace {

// On pixels of 4 bytes as they are. What is no channel becomes 0.
void run_bytes(const RowFunction& function, const PixelFormat& format, const uint8_t* from,
               uint8_t* to, size_t bytes) {
    constexpr size_t at_once = 4 * pixels_at_once;
    for (size_t at = 0; at < bytes; at += at_once) {
        const size_t n = std::min(bytes - at, at_once);
        function.on_bytes(to + at, from + at, n);
        kernels().keep_bits(to + at, to + at, n, format.masks.sum());
    }
}

} // namespace

void run_row(const RowFunction& function, const PixelFormat& from_format, const uint8_t* from,
             const PixelFormat& to_format, uint8_t* to, size_t count) {
    if (from_format.bits == 24 && to_format.bits == 24)
        return function(to, from, count);
    if (function.on_each_byte() && from_format == to_format && from_format.has_byte_channels())
        return run_bytes(function, from_format, from, to, 4 * count);
    uint8_t bgr[3 * pixels_at_once];
    while (count != 0) {
        const size_t n = std::min(count, pixels_at_once);
        unpack_row(from_format, from, bgr, n);
        function(bgr, bgr, n);
        pack_row(to_format, bgr, to, n);
        from += n * from_format.bytes();
        to += n * to_format.bytes();
        count -= n;
    }
}

RectOperation::RectOperation(HGLOBAL dib, const Rect& rect, Check check, RowStart start)
    : source_(dib), rect_(rect), status_(check(source_, rect, start)),
      rows_(status_ == Status::ok ? source_.rows(start) : Rows{}) {}

Status RectOperation::change(const RowFunction& function) const {
    if (status_ != Status::ok)
        return status_;
    const PixelFormat pixels = format();
    each_row([&](int32_t r) { run_row(function, pixels, row(r), pixels, row(r), width()); });
    return Status::ok;
}

HGLOBAL RectOperation::make(const RowFunction& function, int32_t* status,
                            const PixelFormat& to) const {
    if (!passed(status))
        return nullptr;
    RectResult result(*this, to.bits);
    if (!result) {
        report(status, Status::no_memory);
        return nullptr;
    }
    const PixelFormat from = format();
    each_row([&](int32_t r) { run_row(function, from, row(r), to, result.row(r), width()); });
    return result.release();
}

RectResult::RectResult(const RectOperation& operation, int32_t bits)
    : block_(new_dib(operation.rect().width, operation.rect().height, bits, Content::any)),
      dib_(block_.get()) {
    if (dib_ && bits == operation.source().bits())
        copy_colour_part(dib_, operation.source());
}

} // namespace kirvo
