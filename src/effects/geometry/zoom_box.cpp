// The mean of a box of source pixels under each pixel of a reduced image.
#include "effects/geometry/zoom.hpp"
#include "image/pixels.hpp"
#include "image/stream.hpp"
#include "simd/kernels.hpp"

#include <bit>
#include <type_traits>

namespace kirvo {

namespace {

// The source's rows as 24-bit pixels from one column on. A row holds as many pixels as fit into its
// stride, padding included.
class SourceReader {
  public:
    SourceReader(const LockedDib& dib, size_t first, size_t count)
        : rows_(dib.rows(RowStart::after_40)), format_(PixelFormat::of(dib)), first_(first),
          count_(count), raw_(format_.bytes() * count), unpacked_(3 * uint64_t{count}) {}

    explicit operator bool() const { return raw_ && unpacked_; }

    const uint8_t* operator[](int32_t row) const {
        const size_t bytes = format_.bytes() * count_;
        const uint8_t* pixels = rows_[row] + format_.bytes() * first_;
        prefetch(pixels - rows_.stride, bytes); // the one that comes next
        // The padding of the last row may be missing from the block.
        if (static_cast<size_t>(rows_.end - pixels) < bytes) {
            copy_up_to(raw_.data(), pixels, bytes, rows_.end);
            pixels = raw_.data();
        }
        if (format_.bits == 24)
            return pixels;
        unpack_row(format_, pixels, unpacked_.data(), count_);
        return unpacked_.data();
    }

  private:
    Rows rows_;
    PixelFormat format_;
    size_t first_, count_;
    Scratch raw_, unpacked_;
};

// Columns of a box: where it begins in the source row and how many pixels of it there are.
struct BoxColumns {
    uint32_t first, count;
};

// Sums that stay small are divided by multiplying: 0.5 holds every quotient so far from the next
// whole number that the rounding of the product (2^-44 at most) does not reach it.
constexpr uint64_t small_box = 1 << 23;

template<typename Sum>
class Divisor {
  public:
    explicit Divisor(Sum count) : count_(count), inverse_(1.0 / static_cast<double>(count)) {}
    uint8_t operator()(Sum sum) const {
        if constexpr (std::is_same_v<Sum, int32_t>)
            return static_cast<uint8_t>(static_cast<int32_t>((sum + 0.5) * inverse_));
        else
            return static_cast<uint8_t>(sum / count_);
    }

  private:
    Sum count_;
    double inverse_;
};

template<typename Column, typename Sum>
void average_row(uint8_t* to, const Column* columns, const BoxColumns* spans, size_t width,
                 int32_t rows) {
    Sum count = 0;
    Divisor<Sum> divide(1);
    for (size_t i = 0; i < width; ++i, to += 3) {
        const Sum now = static_cast<Sum>(spans[i].count) * static_cast<Sum>(rows);
        if (now != count)
            divide = Divisor<Sum>(count = now);
        Sum sums[3] = {};
        const Column* column = columns + 3 * size_t{spans[i].first};
        for (uint32_t t = 0; t < spans[i].count; ++t, column += 3)
            for (int c = 0; c < 3; ++c)
                sums[c] += static_cast<Sum>(column[c]);
        for (int c = 0; c < 3; ++c)
            to[c] = divide(sums[c]);
    }
}

void add_row(uint16_t* sums, const uint8_t* row, size_t bytes) {
    kernels().add_to_sums16(sums, row, bytes);
}

void add_row(uint64_t* sums, const uint8_t* row, size_t bytes) {
    for (size_t i = 0; i < bytes; ++i)
        sums[i] += row[i];
}

// The sums of 24-bit columns over the rows of a box, then of those over the columns of each.
template<typename Column, typename Sum>
bool average(const Zoom& zoom, const Rows& to, const BoxColumns* spans, size_t first, size_t span) {
    const LockedDib& source = zoom.source();
    const auto width = static_cast<size_t>(zoom.width());
    const PixelFormat format = PixelFormat::of(source);
    const SourceReader reader(source, first, span);
    const Scratch columns(sizeof(Column) * 3 * uint64_t{span}), packed(3 * uint64_t{width});
    if (!reader || !columns || !packed)
        return false;
    auto* const sums = columns.as<Column>();
    zoom.each_row(to, [&](uint8_t* row, int32_t y) {
        const int32_t count = std::min(zoom.box_height(), source.height() - y);
        std::fill_n(sums, 3 * span, Column{0});
        for (int32_t i = 0; i < count; ++i)
            add_row(sums, reader[source.height() - 1 - y - i], 3 * span);
        uint8_t* const bgr = format.bits == 24 ? row : packed.data();
        average_row<Column, Sum>(bgr, sums, spans, width, count);
        if (format.bits != 24)
            pack_row(format, bgr, row, width);
    });
    return true;
}

// Boxes of 2 or 4 columns, side by side inside the picture, and a power of 2 of pixels.
bool are_even(const Zoom& zoom, const BoxColumns* spans) {
    const LockedDib& source = zoom.source();
    const auto columns = static_cast<uint32_t>(zoom.box_width());
    const auto rows = static_cast<uint32_t>(zoom.box_height());
    if ((columns != 2 && columns != 4) || !std::has_single_bit(rows) ||
        columns * uint64_t{rows} > 256)
        return false;
    const auto width = static_cast<size_t>(zoom.width());
    for (size_t i = 0; i < width; ++i)
        if (spans[i].first != i * columns || spans[i].count != columns)
            return false;
    return zoom.column(0) + int64_t{columns} * zoom.width() <= source.width() &&
           zoom.row(zoom.height() - 1) + int64_t{rows} <= source.height();
}

bool average_even(const Zoom& zoom, const Rows& to) {
    const LockedDib& source = zoom.source();
    const PixelFormat format = PixelFormat::of(source);
    const Kernels& k = kernels();
    const auto means = zoom.box_width() == 2 ? k.means_of_2 : k.means_of_4;
    const auto rows = static_cast<size_t>(zoom.box_height());
    const int shift =
        std::countr_zero(static_cast<uint32_t>(zoom.box_width()) * static_cast<uint32_t>(rows));
    const Rows from = source.rows(RowStart::after_40);
    const auto source_row = [&](int64_t y) {
        return from[source.height() - 1 - y] + format.bytes() * static_cast<size_t>(zoom.column(0));
    };
    const auto width = static_cast<size_t>(zoom.width());
    if (format.bits == 24) {
        zoom.each_row(to, [&](uint8_t* row, int32_t y) {
            means(row, source_row(y), -from.stride, rows, width, shift);
        });
        return true;
    }
    if (zoom.box_width() == 2 && format.has_byte_channels()) { // what is no channel becomes 0
        zoom.each_row(to, [&](uint8_t* row, int32_t y) {
            k.wide_means_of_2(row, source_row(y), -from.stride, rows, width, shift);
            k.keep_bits(row, row, 4 * width, format.masks.sum());
        });
        return true;
    }
    const size_t span = width * static_cast<size_t>(zoom.box_width()), step = 3 * span;
    const Scratch boxes(uint64_t{step} * rows), packed(3 * uint64_t{width});
    if (!boxes || !packed)
        return false;
    zoom.each_row(to, [&](uint8_t* row, int32_t y) {
        for (size_t i = 0; i < rows; ++i) {
            const int64_t at = y + static_cast<int64_t>(i);
            prefetch(source_row(at + static_cast<int64_t>(rows)), format.bytes() * span);
            unpack_row(format, source_row(at), boxes.data() + step * i, span);
        }
        means(packed.data(), boxes.data(), static_cast<ptrdiff_t>(step), rows, width, shift);
        pack_row(format, packed.data(), row, width);
    });
    return true;
}

} // namespace

bool zoom_box(const Zoom& zoom, const Rows& to) {
    const LockedDib& source = zoom.source();
    const int64_t row_pixels = source.stride() / (source.bits() / 8);
    const auto width = static_cast<size_t>(zoom.width());
    const Scratch map(sizeof(BoxColumns) * uint64_t{width});
    if (!map)
        return false;
    auto* const spans = map.as<BoxColumns>();
    const int32_t first = zoom.column(0);
    int64_t end = 0;
    for (size_t i = 0; i < width; ++i) {
        const int32_t column = zoom.column(static_cast<int32_t>(i));
        const int64_t count = std::min<int64_t>(zoom.box_width(), row_pixels - column);
        spans[i] = {static_cast<uint32_t>(column - first), static_cast<uint32_t>(count)};
        end = std::max(end, column + count);
    }
    if (are_even(zoom, spans))
        return average_even(zoom, to);
    const auto from = static_cast<size_t>(first), span = static_cast<size_t>(end - first);
    const auto box =
        static_cast<uint64_t>(zoom.box_width()) * static_cast<uint64_t>(zoom.box_height());
    // 257 rows of 255 still fit into 16 bits.
    return zoom.box_height() <= 257 && box <= small_box
               ? average<uint16_t, int32_t>(zoom, to, spans, from, span)
               : average<uint64_t, uint64_t>(zoom, to, spans, from, span);
}

} // namespace kirvo
