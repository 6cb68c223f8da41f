// Mosaics: blocks that take the colour of their top left pixel, or their average.
#include "image/duplicate.hpp"
#include "image/rect_operation.hpp"
#include "simd/kernels.hpp"

#include <cstring>

using namespace kirvo;

namespace {

HGLOBAL duplicate_of(const RectOperation& operation, int32_t* status) {
    OwnedBlock result;
    report(status, duplicate(operation.source(), operation.rect(), result));
    return result.release();
}

// Writes a pixel count times, doubling what is there.
void repeat_pixel(uint8_t* to, const uint8_t* pixel, size_t bytes, size_t count) {
    const size_t total = bytes * count;
    std::memcpy(to, pixel, bytes);
    for (size_t filled = bytes; filled < total; filled *= 2)
        std::memcpy(to + filled, to, std::min(filled, total - filled));
}

HGLOBAL sample_mosaic(RectOperation& operation, int32_t block, int32_t* status) {
    operation.require(block >= 1);
    if (!operation.passed(status))
        return nullptr;
    if (block == 1)
        return duplicate_of(operation, status);
    RectResult result(operation, operation.source().bits());
    if (!result) {
        report(status, Status::no_memory);
        return nullptr;
    }
    const int32_t top = operation.rect().height - 1;
    const auto bytes = static_cast<size_t>(operation.source().bits() / 8);
    const auto n = static_cast<size_t>(block);
    const size_t width = operation.width();
    // From the top of the picture down.
    operation.each_row([&](int32_t r) {
        uint8_t* to = result.row(top - r);
        if (r % block != 0) {
            std::memcpy(to, result.row(top - r + 1), width * bytes);
            return;
        }
        const uint8_t* from = operation.row(top - r);
        for (size_t i = 0; i < width; i += n)
            repeat_pixel(to + i * bytes, from + i * bytes, bytes, std::min(n, width - i));
    });
    return result.release();
}

// The averaging mosaic. Its blocks are clipped to the rows of the whole image and to their stride,
// not to the rectangle: a pixel counts as long as its last byte lies within the stride, so that
// padding may add one pixel of 16 or 24 bits, or up to three of 8. The result is filled by the same
// rule.
class AverageMosaic {
  public:
    AverageMosaic(const RectOperation& operation, int32_t block)
        : operation_(operation), bits_(operation.source().bits()),
          bytes_(static_cast<size_t>(bits_ / 8)), channels_(bits_ == 8 ? 1 : 3),
          block_(static_cast<size_t>(block)), blocks_((operation.width() + block_ - 1) / block_),
          columns_(
              std::min(blocks_ * block_, static_cast<size_t>(operation.source().stride()) / bytes_ -
                                             static_cast<size_t>(operation.rect().x))),
          sums_(sizeof(uint32_t) * channels_ * uint64_t{columns_}),
          raw_(bytes_ * uint64_t{columns_}), bgr_(channels_ * uint64_t{columns_}),
          result_(operation, bits_) {
        if (bits_ != 8)
            format_ = operation.format();
    }

    explicit operator bool() const { return sums_ && raw_ && bgr_ && result_; }

    HGLOBAL make() {
        const int32_t height = operation_.rect().height;
        each_step(
            height, [&](int32_t done) { make_blocks(height - 1 - done); },
            static_cast<int32_t>(block_));
        return result_.release();
    }

  private:
    // The blocks whose top row is the given one of the rectangle, counted from its bottom.
    void make_blocks(int32_t top) {
        const int64_t below = bottom_row(operation_.source().height(), operation_.rect()) + top;
        const auto rows =
            static_cast<int32_t>(std::min<int64_t>(static_cast<int64_t>(block_), below + 1));
        std::memset(sums_.data(), 0, sizeof(uint32_t) * channels_ * columns_);
        for (int32_t i = 0; i < rows; ++i)
            kernels().add_to_sums32(sums_.as<uint32_t>(), channels_of(operation_.row(top - i)),
                                    channels_ * columns_);
        fill_row(result_.row(top), static_cast<uint32_t>(rows));
        const int32_t filled = std::min(rows, top + 1);
        for (int32_t i = 1; i < filled; ++i)
            std::memcpy(result_.row(top - i), result_.row(top), filled_columns() * bytes_);
    }

    // Bytes of an image row as indexes or 24-bit pixels. Padding of the last row may lie past the
    // block's end.
    const uint8_t* channels_of(const uint8_t* row) {
        const LockedDib& source = operation_.source();
        const size_t count = bytes_ * columns_;
        if (row > source.end() || count > static_cast<size_t>(source.end() - row)) {
            copy_up_to(raw_.data(), row, count, source.end());
            row = raw_.data();
        }
        if (bits_ == 8 || bits_ == 24)
            return row;
        unpack_row(format_, row, bgr_.data(), columns_);
        return bgr_.data();
    }

    size_t filled_columns() const {
        const auto stride = static_cast<size_t>(result_.dib().stride());
        return std::min(blocks_ * block_, stride / bytes_);
    }

    void fill_row(uint8_t* to, uint32_t rows) const {
        const size_t limit = filled_columns();
        for (size_t left = 0; left < limit; left += block_) {
            uint8_t pixel[4];
            store_average(pixel, left, std::min(left + block_, columns_), rows);
            repeat_pixel(to + left * bytes_, pixel, bytes_, std::min(block_, limit - left));
        }
    }

    void store_average(uint8_t* pixel, size_t left, size_t right, uint32_t rows) const {
        const uint32_t* sums = sums_.as<uint32_t>();
        uint32_t total[3] = {};
        for (size_t column = left; column < right; ++column) {
            for (size_t c = 0; c < channels_; ++c)
                total[c] += sums[channels_ * column + c];
        }
        const uint32_t pixels = rows * static_cast<uint32_t>(right - left);
        const auto average = [&](int c) { return static_cast<uint8_t>(total[c] / pixels); };
        if (bits_ == 8)
            pixel[0] = average(0);
        else
            format_.store(pixel, {average(2), average(1), average(0)});
    }

    const RectOperation& operation_;
    int32_t bits_;
    size_t bytes_, channels_; // of a pixel
    size_t block_, blocks_;   // size, and number from left to right
    size_t columns_;          // of the source that are averaged
    PixelFormat format_ = {};
    Scratch sums_, raw_, bgr_;
    RectResult result_;
};

HGLOBAL average_mosaic(const RectOperation& operation, int32_t block, int32_t* status) {
    AverageMosaic mosaic(operation, block);
    if (mosaic)
        return mosaic.make();
    report(status, Status::no_memory);
    return nullptr;
}

} // namespace

HGLOBAL WINAPI Dib24Mosaic(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                           int32_t block, int32_t* status) {
    RectOperation operation(dib, {x, y, width, height}, check_rect_24);
    return sample_mosaic(operation, block, status);
}

HGLOBAL WINAPI DibMosaicEx(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                           int32_t block, int32_t* status) {
    RectOperation operation(dib, {x, y, width, height}, check_rect_8_to_32);
    return sample_mosaic(operation, block, status);
}

HGLOBAL WINAPI DibMosaicEx2(HGLOBAL dib, int32_t x, int32_t y, int32_t width, int32_t height,
                            int32_t block, int32_t* status) {
    RectOperation operation(dib, {x, y, width, height}, check_rect_8_to_32);
    operation.require(block >= 1 && block <= 1024);
    if (!operation.passed(status))
        return nullptr;
    return block == 1 ? duplicate_of(operation, status) : average_mosaic(operation, block, status);
}
