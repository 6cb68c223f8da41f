#include "jpeg/encode_source.hpp"

#include "core/pixels.hpp"

#include <algorithm>

namespace kirvo {

namespace {

int8_t shifted(uint8_t grey) { return static_cast<int8_t>(grey - 128); }

void look_up(const int8_t* samples, const uint8_t* indexes, size_t count, int8_t* to) {
    for (size_t i = 0; i < count; ++i)
        to[i] = samples[indexes[i]];
}

} // namespace

void EncodeSource::open(const EncodeRequest& request, const LockedDib& dib) {
    const Rows rows = dib.rows(RowStart::after_header);
    region_ = request.region;
    first_pixel_ = rows[int64_t{dib.height()} - region_.y - 1] +
                   static_cast<ptrdiff_t>(region_.x) * (dib.bits() / 8);
    row_step_ = -rows.stride;
    grey_ = request.grey();
    indexed_ = dib.bits() == 8;
    kernels_ = &kernels();
    if (indexed_)
        prepare_indexes(request, dib);
}

// The 256 entries after the header, whatever the table's length.
void EncodeSource::prepare_indexes(const EncodeRequest& request, const LockedDib& dib) {
    const ColourTable table(dib, dib.header.biSize);
    index_.plain_grey = true;
    for (int32_t i = 0; i < 256; ++i) {
        const auto index = static_cast<uint8_t>(i);
        const RGBQUAD& entry = table.entry[i];
        const uint8_t bgr[] = {entry.rgbBlue, entry.rgbGreen, entry.rgbRed};
        kernels_->samples_of(bgr, 1, index_.luma + i, index_.cb + i, index_.cr + i);
        if (grey_)
            index_.luma[i] = shifted(request.grey_from_table ? entry.rgbBlue : index);
        index_.plain_grey = index_.plain_grey && index_.luma[i] == shifted(index);
    }
}

void EncodeSource::sample(int32_t x, int32_t y, size_t count, int8_t* luma, int8_t* cb,
                          int8_t* cr) const {
    const uint8_t* row = first_pixel_ + y * row_step_;
    if (!indexed_) {
        kernels_->samples_of(row + static_cast<ptrdiff_t>(x) * 3, count, luma, cb, cr);
        return;
    }
    const uint8_t* indexes = row + x;
    if (index_.plain_grey)
        std::transform(indexes, indexes + count, luma, shifted);
    else
        look_up(index_.luma, indexes, count, luma);
    if (!grey_) {
        look_up(index_.cb, indexes, count, cb);
        look_up(index_.cr, indexes, count, cr);
    }
}

void EncodeSource::prefetch(ptrdiff_t x, ptrdiff_t y, int32_t rows) const {
    const uint8_t* pixels = first_pixel_ + y * row_step_ + x * (indexed_ ? 1 : 3);
    rows = std::min(rows, region_.height - static_cast<int32_t>(y));
    for (int32_t i = 0; i < rows; ++i)
        __builtin_prefetch(pixels + i * row_step_);
}

} // namespace kirvo
