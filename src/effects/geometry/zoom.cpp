// Zoom to any size, by the nearest pixel or by the mean of a box of pixels.
#include "effects/geometry/zoom.hpp"

#include "image/duplicate.hpp"
#include "image/masks.hpp"
#include "simd/kernels.hpp"

#include <cstring>

namespace kirvo {

namespace {

bool is_inside(int32_t coordinate, int32_t size) { return coordinate >= 0 && coordinate < size; }

// The pixel of a picture row and column that may lie outside the picture: the bytes at which they
// lead, a negative column into the stored row below, or, where those lie outside the block, the
// nearest pixel of the picture.
const uint8_t* pixel_at(const LockedDib& source, int32_t x, int32_t y) {
    const Rows rows = source.rows(RowStart::after_40);
    const int64_t bytes = source.bits() / 8;
    const auto from_first = [&](int64_t column, int64_t row) {
        return (source.height() - 1 - row) * rows.stride + column * bytes;
    };
    const int64_t offset = from_first(x, y), first = rows[0] - source.data();
    if (first + offset >= 0 && offset + bytes <= rows.end - rows[0])
        return rows[0] + offset;
    return rows[0] +
           from_first(std::clamp(x, 0, source.width() - 1), std::clamp(y, 0, source.height() - 1));
}

} // namespace

bool zoom_nearest(const Zoom& zoom, const Rows& to) {
    const LockedDib& source = zoom.source();
    const auto bytes = static_cast<size_t>(source.bits() / 8);
    const auto width = static_cast<size_t>(zoom.width());
    const Scratch map(sizeof(uint32_t) * uint64_t{width});
    if (!map)
        return false;
    auto* const offsets = map.as<uint32_t>();
    bool inside = true;
    for (size_t i = 0; i < width; ++i) {
        const int32_t column = zoom.column(static_cast<int32_t>(i));
        inside = inside && is_inside(column, source.width());
        offsets[i] = static_cast<uint32_t>(static_cast<size_t>(column) * bytes);
    }
    const Kernels::Gather gather = kernels().gather[bytes - 1];
    const Rows from = source.rows(RowStart::after_40);
    const auto fill_row = [&](uint8_t* row, int32_t y) {
        if (inside && is_inside(y, source.height()))
            return gather(row, from[source.height() - 1 - y], offsets, width);
        for (size_t i = 0; i < width; ++i)
            std::memcpy(row + i * bytes, pixel_at(source, zoom.column(static_cast<int32_t>(i)), y),
                        bytes);
    };
    const uint8_t* last = nullptr;
    int32_t last_y = 0;
    zoom.each_row(to, [&](uint8_t* row, int32_t y) {
        if (last != nullptr && y == last_y)
            std::memcpy(row, last, width * bytes);
        else
            fill_row(row, y);
        last = row;
        last_y = y;
    });
    return true;
}

namespace {

struct NewSize {
    int32_t width, height;
};

enum class Coordinates { short_ones, full };

// What the zoom of a source that has passed its check answers.
Status fill(const LockedDib& source, const Rect& rect, const NewSize& size, Coordinates coordinates,
            bool smooth, HGLOBAL result) {
    const LockedDib target(result);
    copy_colour_part(target, source);
    const Zoom zoom(source, rect, size.width, size.height, coordinates == Coordinates::short_ones);
    const Rows to = target.rows(RowStart::after_40);
    const bool box = smooth && source.bits() != 8 && !zoom.enlarges();
    return (box ? zoom_box(zoom, to) : zoom_nearest(zoom, to)) ? Status::ok : Status::no_memory;
}

// An equal size is a copy, which leaves the status of a success unwritten.
HGLOBAL make_zoomed(HGLOBAL handle, const Rect& rect, const NewSize& size, Coordinates coordinates,
                    bool smooth, int32_t* status) {
    const auto fail = [&](Status why) -> HGLOBAL {
        report(status, why);
        return nullptr;
    };
    if (size.width < 1 || size.height < 1)
        return fail(Status::bad_parameter);
    const LockedDib source(handle);
    const Status check = check_rect_8_to_32(source, rect, RowStart::after_40);
    if (check != Status::ok)
        return fail(check);
    OwnedBlock result = new_dib(size.width, size.height, source.bits(), Content::any);
    if (!result)
        return fail(Status::no_memory);
    if (size.width == rect.width && size.height == rect.height) {
        copy_out(result.get(), source, rect);
        return result.release();
    }
    const Status filled = fill(source, rect, size, coordinates, smooth, result.get());
    if (filled != Status::ok)
        return fail(filled);
    report(status, Status::ok);
    return result.release();
}

} // namespace

} // namespace kirvo

using namespace kirvo;

HGLOBAL WINAPI Dib24ZoomEx(HGLOBAL dib, int32_t left, int32_t top, int32_t width, int32_t height,
                           int32_t new_width, int32_t new_height, int32_t* status) {
    return make_zoomed(dib, {left, top, width, height}, {new_width, new_height},
                       Coordinates::short_ones, false, status);
}

HGLOBAL WINAPI Dib24ZoomEx2(HGLOBAL dib, int32_t left, int32_t top, int32_t width, int32_t height,
                            int32_t new_width, int32_t new_height, int32_t* status,
                            int32_t smooth) {
    return make_zoomed(dib, {left, top, width, height}, {new_width, new_height}, Coordinates::full,
                       smooth == 1, status);
}
