#include "image/duplicate.hpp"

#include "image/masks.hpp"

namespace kirvo {

namespace {

constexpr RowStart start = RowStart::after_40;

bool can_copy(const LockedDib& to, const LockedDib& from) {
    return to.bits() == from.bits() && is_depth(to.bits()) && to.bits() >= 8;
}

bool has_size_of(const LockedDib& dib, const Rect& rect) {
    return dib.width() == rect.width && dib.height() == rect.height;
}

// Bytes beyond either block read as 0 or are dropped: that is the padding of the last row.
void copy_rows(const Rows& to, const Rows& from, int32_t count, size_t bytes) {
    const bool same_block = to.end == from.end;
    const CopyBytes copy = same_block ? move_bytes : copy_for(bytes, static_cast<uint64_t>(count));
    for (int32_t row = 0; row < count; ++row) {
        uint8_t* target = to[row];
        copy_up_to(target, from[row], std::min(bytes, static_cast<size_t>(to.end - target)),
                   from.end, copy);
    }
}

// Between images of the same size: one block of bytes.
void copy_whole(const LockedDib& to, const LockedDib& from) {
    copy_colour_part(to, from);
    copy_rows(to.rows(start), from.rows(start), 1,
              static_cast<size_t>(from.stride()) * static_cast<size_t>(from.height()));
}

} // namespace

Status copy_out(HGLOBAL handle, const LockedDib& from, const Rect& rect) {
    LockedDib to(handle);
    if (!to || !from)
        return Status::null_handle;
    if (!well_formed(rect))
        return Status::bad_parameter;
    if (!can_copy(to, from))
        return Status::needs_8_16_24_32;
    to.header.biWidth = rect.width;
    to.header.biHeight = rect.height;
    const bool whole = has_size_of(from, rect);
    if ((!whole && !inside(rect, from)) || !from.holds_rows(start) || !to.holds_rows(start))
        return Status::bad_parameter;
    if (whole) {
        copy_whole(to, from);
    } else {
        copy_colour_part(to, from);
        copy_rows(to.rows(start), rows_of(from, rect, start), rect.height,
                  static_cast<size_t>(to.stride()));
    }
    return Status::ok;
}

Status copy_rect(const LockedDib& to, int32_t x, int32_t y, const LockedDib& from,
                 const Rect& rect) {
    const Rect target = {x, y, rect.width, rect.height};
    if (!to || !from)
        return Status::null_handle;
    if (!well_formed(rect) || !well_formed(target))
        return Status::bad_parameter;
    if (!can_copy(to, from))
        return Status::needs_8_16_24_32;
    const bool whole = has_size_of(to, rect) && has_size_of(from, rect);
    if ((!whole && (!inside(rect, from) || !inside(target, to))) || !from.holds_rows(start) ||
        !to.holds_rows(start))
        return Status::bad_parameter;
    if (whole) {
        copy_whole(to, from);
    } else {
        copy_colour_part(to, from);
        copy_rows(rows_of(to, target, start), rows_of(from, rect, start), rect.height,
                  static_cast<size_t>(row_bytes(rect.width, from.bits())));
    }
    return Status::ok;
}

Status room_for_duplicate(const LockedDib& from, const Rect& rect, OwnedBlock& result) {
    if (!from)
        return Status::null_handle;
    if (!well_formed(rect) || !inside(rect, from) || !from.holds_rows(start))
        return Status::bad_parameter;
    if (from.bits() < 8)
        return Status::needs_8_16_24_32;
    result = new_dib(rect.width, rect.height, from.bits(), Content::any);
    return result ? Status::ok : Status::no_memory;
}

Status duplicate(const LockedDib& from, const Rect& rect, OwnedBlock& result) {
    OwnedBlock made;
    Status status = room_for_duplicate(from, rect, made);
    if (status == Status::ok)
        status = copy_rect(LockedDib(made.get()), 0, 0, from, rect);
    if (status == Status::ok)
        result = std::move(made);
    return status;
}

} // namespace kirvo
