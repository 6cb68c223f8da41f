// A quarter turn of a rectangle into a new image.
#include "core/masks.hpp"
#include "core/progress.hpp"
#include "effects/turn_rows.hpp"

namespace kirvo {

namespace {

constexpr RowStart start = RowStart::after_40;

enum class Direction : int32_t { clockwise, counter_clockwise };

// Stored row k of the rectangle, from its bottom, becomes column k from the left and runs downward
// (clockwise), or from the right and runs upward. A strip of rows at a time is turned in tiles that
// stay in the cache, source and destination.
void turn(const Rows& to, const LockedDib& from, const Rect& rect, Direction direction) {
    constexpr int32_t strip = 64, tile = 64;
    const auto bytes = static_cast<size_t>(from.bits() / 8);
    const TurnRows::Transpose transpose = turn_rows().transpose[bytes - 1];
    const Rows sources = rows_of(from, rect, start);
    const bool clockwise = direction == Direction::clockwise;
    Progress progress;
    progress.start();
    for (int32_t k = 0; k < rect.height; k += strip) {
        const int32_t rows = std::min(strip, rect.height - k);
        for (int32_t i = 0; i < rows; ++i)
            progress.step(k + i, rect.height);
        const uint8_t* source = sources[clockwise ? k : k + rows - 1];
        const int32_t column = clockwise ? k : rect.height - k - rows;
        for (int32_t x = 0; x < rect.width; x += tile) {
            uint8_t* target = to[clockwise ? rect.width - 1 - x : x];
            transpose(target + static_cast<size_t>(column) * bytes,
                      clockwise ? -to.stride : to.stride, source + static_cast<size_t>(x) * bytes,
                      clockwise ? sources.stride : -sources.stride,
                      static_cast<size_t>(std::min(tile, rect.width - x)),
                      static_cast<size_t>(rows));
        }
    }
    progress.finish();
}

Status rotate(HGLOBAL handle, const Rect& rect, int32_t direction, OwnedBlock& result) {
    if (direction != 0 && direction != 1)
        return Status::bad_parameter;
    const LockedDib from(handle);
    const Status status = DibCheckRect8to32(from, rect, start);
    if (status != Status::ok)
        return status;
    result = new_dib(rect.height, rect.width, from.bits());
    if (!result)
        return Status::no_memory;
    const LockedDib to(result.get());
    copy_colour_part(to, from);
    turn(to.rows(start), from, rect, static_cast<Direction>(direction));
    return Status::ok;
}

} // namespace

} // namespace kirvo

using namespace kirvo;

HGLOBAL WINAPI Dib24Rotate(HGLOBAL dib, int32_t left, int32_t top, int32_t width, int32_t height,
                           int32_t direction, int32_t* status) {
    OwnedBlock result;
    report(status, rotate(dib, {left, top, width, height}, direction, result));
    return result.release();
}
