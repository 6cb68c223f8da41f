// Two images interleaved row by row.
#include "image/masks.hpp"
#include "image/progress.hpp"

using namespace kirvo;

namespace {

// Rows count from the bottom here, unlike those of rectangles elsewhere.
struct Field {
    const LockedDib& dib;
    int32_t x, stored_row;

    bool is_inside(int32_t width, int32_t height) const {
        return int64_t{x} + width <= dib.width() && int64_t{stored_row} + height <= dib.height() &&
               dib.holds_rows(RowStart::after_40);
    }
    Rows rows() const {
        Rows rows = dib.rows(RowStart::after_40);
        rows.first = rows[stored_row] + ptrdiff_t{x} * (dib.bits() / 8);
        return rows;
    }
};

Status check(const Field& even, const Field& odd, int32_t width, int32_t height) {
    if (!even.dib || !odd.dib)
        return Status::null_handle;
    if (!well_formed({even.x, even.stored_row, width, height}) ||
        !well_formed({odd.x, odd.stored_row, width, height}))
        return Status::bad_parameter;
    const int32_t bits = even.dib.bits();
    if (bits != odd.dib.bits() || (bits != 24 && bits != 32))
        return Status::needs_24_32;
    return even.is_inside(width, height) && odd.is_inside(width, height) ? Status::ok
                                                                         : Status::bad_parameter;
}

Status interleave(const Field& even, const Field& odd, int32_t width, int32_t height,
                  OwnedBlock& result) {
    const Status status = check(even, odd, width, height);
    if (status != Status::ok)
        return status;
    OwnedBlock block = new_dib(width, 2 * int64_t{height}, even.dib.bits(), Content::any);
    const LockedDib to(block.get());
    if (!to)
        return Status::no_memory;
    copy_masks(to, even.dib);
    const Rows rows = to.rows(RowStart::after_40), evens = even.rows(), odds = odd.rows();
    // Whole rows of the result: their padding comes from the pixels that follow in the field.
    const auto bytes = static_cast<size_t>(to.stride());
    const CopyBytes copy = copy_for(bytes, 2 * static_cast<uint64_t>(height));
    each_step(height, [&](int32_t i) {
        copy_up_to(rows[2 * int64_t{i}], evens[i], bytes, evens.end, copy);
        copy_up_to(rows[2 * int64_t{i} + 1], odds[i], bytes, odds.end, copy);
    });
    result.reset(block.release());
    return Status::ok;
}

} // namespace

HGLOBAL WINAPI Dib24InterLeave(HGLOBAL first, int32_t x1, int32_t y1, HGLOBAL second, int32_t x2,
                               int32_t y2, int32_t width, int32_t height, int32_t* status) {
    const LockedDib even(first), odd(second);
    OwnedBlock result;
    report(status, interleave({even, x1, y1}, {odd, x2, y2}, width, height, result));
    return result.release();
}
