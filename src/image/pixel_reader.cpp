#include "image/pixel_reader.hpp"

namespace kirvo {

bool holds_rows_after_masks(const LockedDib& dib, uint64_t offset) {
    const bool further = dib.bits() == 32 && offset != dib.rows_offset(RowStart::after_header);
    return dib.holds_rows_at(further ? offset - mask_bytes : offset);
}

PixelReader::PixelReader(const LockedDib& dib, const Rows& rows)
    : format_(PixelFormat::of(dib)), rows_(rows), width_(static_cast<size_t>(dib.width())),
      row_bytes_(width_ * format_.bytes()),
      scratch_(uint64_t{width_} * 3 + uint64_t{width_} * format_.bytes()) {}

const uint8_t* PixelReader::bgr(int64_t row) const {
    if (format_.bits == 24)
        return stored(row);
    read(row, format24, scratch_.data());
    return scratch_.data();
}

const uint8_t* PixelReader::stored(int64_t row) const {
    const uint8_t* bytes = rows_[row];
    if (bytes <= rows_.end && static_cast<size_t>(rows_.end - bytes) >= row_bytes_)
        return bytes;
    uint8_t* staged = scratch_.data() + 3 * width_;
    copy_up_to(staged, bytes, row_bytes_, rows_.end);
    return staged;
}

} // namespace kirvo
