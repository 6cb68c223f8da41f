#include "jpeg/encode/tile.hpp"

#include "jpeg/encode/quantiser.hpp"

#include <algorithm>
#include <cstring>

namespace kirvo {

namespace {

size_t groups_of(size_t blocks) { return (blocks + blocks_abreast - 1) / blocks_abreast; }

} // namespace

void EncodeTile::prepare(bool grey, McuShape mcu, const QuantisationSlots& slots,
                         int32_t coded_count) {
    kernels_ = &kernels();
    grey_ = grey;
    mcu_ = mcu;
    set_quantiser(luminance_, slots[0].data(), coded_count);
    set_quantiser(chrominance_, slots[1].data(), coded_count);
    // Made at the first encode: as constants they would make the library's file larger by a twentieth.
    static const EntropyCodes luminance_codes = entropy_codes(luminance_dc, luminance_ac);
    static const EntropyCodes chrominance_codes = entropy_codes(chrominance_dc, chrominance_ac);
    part_count_ = 0;
    for (int32_t row = 0; row < mcu.down(); ++row)
        add_part(y_groups_[row], static_cast<size_t>(mcu.across()), luminance_codes, y_predictor_);
    if (grey)
        return;
    add_part(cb_groups_, 1, chrominance_codes, cb_predictor_);
    add_part(cr_groups_, 1, chrominance_codes, cr_predictor_);
}

void EncodeTile::add_part(const BlockGroup* groups, size_t blocks, const EntropyCodes& codes,
                          int16_t& predictor) {
    predictor = 0;
    parts_[part_count_++] = {groups, blocks, &codes, &predictor};
}

void EncodeTile::fill(const EncodeSource& source, int32_t x, int32_t y, size_t mcus) {
    sample(source, x, y, mcus * static_cast<size_t>(mcu_.width));
    code(mcus);
}

void EncodeTile::sample(const EncodeSource& source, int32_t x, int32_t y, size_t padded) {
    const size_t count = std::min(padded, static_cast<size_t>(source.width() - x));
    for (int32_t i = 0; i < mcu_.height; ++i) {
        const auto row = static_cast<size_t>(i);
        if (i < source.height() - y) {
            source.sample(x, y + i, count, y_[row], cb_[row], cr_[row]);
            if (count < padded)
                extend_row(row, count, padded);
        } else {
            repeat_row(row, padded);
        }
    }
}

// Columns past the region repeat its last one.
void EncodeTile::extend_row(size_t row, size_t count, size_t padded) {
    for (int8_t* samples : {y_[row], cb_[row], cr_[row]})
        std::memset(samples + count, samples[count - 1], padded - count);
}

// Rows past the region repeat its last one.
void EncodeTile::repeat_row(size_t row, size_t padded) {
    for (auto* plane : {y_, cb_, cr_})
        std::memcpy(plane[row], plane[row - 1], padded);
}

void EncodeTile::code(size_t mcus) {
    const size_t groups = groups_of(mcus * static_cast<size_t>(mcu_.across()));
    for (int32_t row = 0; row < mcu_.down(); ++row)
        kernels_->code_groups(y_[8 * row], width, groups, luminance_, y_groups_[row]);
    if (grey_)
        return;
    code_chroma(cb_, mcus, cb_groups_);
    code_chroma(cr_, mcus, cr_groups_);
}

// The chroma is made smaller as the MCU's shape says.
void EncodeTile::code_chroma(const Plane& plane, size_t mcus, BlockGroup* groups) {
    for (size_t i = 0; i < 8 && mcu_.width == 16; ++i) {
        if (mcu_.height == 16)
            kernels_->halve(plane[2 * i], plane[2 * i + 1], 8 * mcus, half_[i]);
        else
            kernels_->halve(plane[i], plane[i], 8 * mcus, half_[i]);
    }
    kernels_->code_groups(mcu_.width == 16 ? half_[0] : plane[0], width, groups_of(mcus),
                          chrominance_, groups);
}

} // namespace kirvo
