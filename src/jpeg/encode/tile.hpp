// MCUs side by side, from pixels to coded bits, in a tile that stays in the first-level cache.
#pragma once

#include "jpeg/encode/entropy.hpp"
#include "jpeg/encode/settings.hpp"
#include "jpeg/encode/source.hpp"

namespace kirvo {

// What one MCU covers.
struct McuShape {
    int32_t width, height;

    int32_t across() const { return width / 8; }
    int32_t down() const { return height / 8; }
};

class EncodeTile {
  public:
    static constexpr size_t width = 256;

    // The first so many coefficients of a block are coded.
    [[gnu::cold]] void prepare(bool grey, McuShape mcu, const QuantisationSlots& slots,
                               int32_t coded_count);
    // Samples and codes MCUs from a place of the source on.
    void fill(const EncodeSource& source, int32_t x, int32_t y, size_t mcus);
    // Puts one of them out. False when it has a value that cannot be coded.
    bool put(BitWriter& bits, size_t mcu) { return put_mcu(bits, parts_, part_count_, mcu); }

  private:
    using Plane = int8_t[16][width];
    static constexpr size_t luminance_groups = width / 8 / blocks_abreast;

    void sample(const EncodeSource& source, int32_t x, int32_t y, size_t padded);
    void extend_row(size_t row, size_t count, size_t padded);
    void repeat_row(size_t row, size_t padded);
    void code(size_t mcus);
    void code_chroma(const Plane& plane, size_t mcus, BlockGroup* groups);
    void add_part(const BlockGroup* groups, size_t blocks, const EntropyCodes& codes,
                  int16_t& predictor);

    const Kernels* kernels_;
    bool grey_;
    McuShape mcu_;
    Quantiser luminance_, chrominance_;
    int16_t y_predictor_, cb_predictor_, cr_predictor_;
    McuPart parts_[4];
    size_t part_count_;

    alignas(64) Plane y_, cb_, cr_;
    alignas(64) int8_t half_[8][width];
    BlockGroup y_groups_[2][luminance_groups];
    BlockGroup cb_groups_[luminance_groups], cr_groups_[luminance_groups];
};

} // namespace kirvo
