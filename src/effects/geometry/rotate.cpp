// A quarter turn of a rectangle into a new image.
#include "image/masks.hpp"
#include "image/progress.hpp"
#include "image/stream.hpp"
#include "simd/kernels.hpp"

#include <cstring>
#include <utility>

namespace kirvo {

namespace {

constexpr RowStart start = RowStart::after_40;

enum class Direction : int32_t { clockwise, counter_clockwise };

// Asks for a tile ahead of its use, whose rows may begin anywhere in lines of the caches.
void prefetch_rows(const uint8_t* rows, ptrdiff_t step, size_t bytes, int32_t count) {
    constexpr size_t line = 64;
    for (int32_t i = 0; i < count; ++i, rows += step)
        prefetch(rows, bytes + line - 1);
}

// Stored row k of the rectangle, from its bottom, becomes column k from the left and runs downward
// (clockwise), or from the right and runs upward.
class QuarterTurn {
  public:
    QuarterTurn(const Rows& to, const LockedDib& from, const Rect& rect, Direction direction)
        : to_(to), from_(rows_of(from, rect, start)), width_(rect.width), height_(rect.height),
          bytes_(static_cast<size_t>(from.bits() / 8)),
          outgrows_caches_(static_cast<uint64_t>(width_) * static_cast<uint64_t>(height_) * bytes_ >
                           size_t{6} << 20),
          transpose_(kernels().transpose[bytes_ - 1]),
          tile_(from_.stride % crowding == 0 ? uint64_t{rows} * tile_step : 0) {
        if (direction == Direction::clockwise)
            to_ = {to_[width_ - 1], -to_.stride, to_.end};
        else
            from_ = {from_[height_ - 1], -from_.stride, from_.end};
    }

    explicit operator bool() const { return static_cast<bool>(tile_); }

    // Strips of columns become strips of destination rows, which are thus written from end to end,
    // in tiles that stay in the cache. The steps told are source rows: as many as the strip is part
    // of the width.
    void run() const {
        PassProgress progress(height_);
        for (int32_t x = 0; x < width_; x += columns) {
            progress.reach(int64_t{height_} * (x + columns_at(x)) / width_ - 1);
            for (int32_t k = 0; k < height_; k += rows) {
                if (outgrows_caches_)
                    prefetch_after(x, k);
                turn_tile(x, k);
            }
        }
        progress.finish();
    }

  private:
    static constexpr int32_t columns = 64, rows = 128; // of a tile
    static constexpr ptrdiff_t tile_step = 4 * columns;
    // Rows so many bytes apart share a few places of the caches, which cannot hold a tile then.
    static constexpr ptrdiff_t crowding = 2048;

    void turn_tile(int32_t x, int32_t k) const {
        const auto tile_columns = static_cast<size_t>(columns_at(x)),
                   tile_rows = static_cast<size_t>(rows_at(k));
        if (from_.stride % crowding != 0)
            return transpose_(target(x, k), to_.stride, source(x, k), from_.stride, tile_columns,
                              tile_rows);
        for (int32_t i = 0; i < rows_at(k); ++i)
            std::memcpy(tile_.data() + i * tile_step, source(x, k + i), bytes_ * tile_columns);
        transpose_(target(x, k), to_.stride, tile_.data(), tile_step, tile_columns, tile_rows);
    }
    int32_t columns_at(int32_t x) const { return std::min(columns, width_ - x); }
    int32_t rows_at(int32_t k) const { return std::min(rows, height_ - k); }
    uint8_t* target(int32_t x, int32_t k) const { return to_[x] + bytes_ * static_cast<size_t>(k); }
    const uint8_t* source(int32_t x, int32_t k) const {
        return from_[k] + bytes_ * static_cast<size_t>(x);
    }
    void prefetch_after(int32_t x, int32_t k) const {
        if (k + rows < height_)
            prefetch_tile(x, k + rows);
        else if (x + columns < width_)
            prefetch_tile(x + columns, 0);
    }
    void prefetch_tile(int32_t x, int32_t k) const {
        prefetch_rows(source(x, k), from_.stride, bytes_ * static_cast<size_t>(columns_at(x)),
                      rows_at(k));
        prefetch_rows(target(x, k), to_.stride, bytes_ * static_cast<size_t>(rows_at(k)),
                      columns_at(x));
    }

    Rows to_, from_;
    int32_t width_, height_;
    size_t bytes_;
    bool outgrows_caches_;
    Kernels::Transpose transpose_;
    Scratch tile_; // in which rows lie side by side
};

Status rotate(HGLOBAL handle, const Rect& rect, int32_t direction, OwnedBlock& result) {
    if (direction != 0 && direction != 1)
        return Status::bad_parameter;
    const LockedDib from(handle);
    const Status status = check_rect_8_to_32(from, rect, start);
    if (status != Status::ok)
        return status;
    OwnedBlock made = new_dib(rect.height, rect.width, from.bits(), Content::any);
    const LockedDib to(made.get());
    if (!to)
        return Status::no_memory;
    copy_colour_part(to, from);
    const QuarterTurn turn(to.rows(start), from, rect, static_cast<Direction>(direction));
    if (!turn)
        return Status::no_memory;
    turn.run();
    result = std::move(made);
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
