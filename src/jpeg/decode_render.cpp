#include "jpeg/decode_render.hpp"

#include <algorithm>

namespace kirvo {

Renderer::Renderer(const Frame& frame, Rows rows)
    : layout_(*frame.layout), width_(frame.width), height_(frame.height),
      mcus_across_((frame.width + layout_.mcu_width - 1) / layout_.mcu_width), rows_(rows),
      kernels_(decode_rows()) {}

// Block at column x and row y of a component's blocks in the group.
void Renderer::transform(const Block& block, int32_t last, int32_t component, int32_t x,
                         int32_t y) {
    kernels_.inverse_dct(block, last, &samples_[component][(y * group_width + x) * 8],
                         group_width);
}

void Renderer::render(int32_t mcu, int32_t count, const Block* blocks, const uint8_t* last) {
    int32_t next = 0;
    for (int32_t m = 0; m < count; ++m) {
        for (int32_t i = 0; i < layout_.blocks(); ++i, ++next) {
            const int32_t chroma = i - layout_.luma_blocks;
            const int32_t component = chroma < 0 ? 0 : 1 + chroma / layout_.chroma_blocks;
            const int32_t place = chroma < 0 ? i : chroma % layout_.chroma_blocks;
            const int32_t across = component == 0 ? layout_.luma_across() : layout_.chroma_across();
            transform(blocks[next], last != nullptr ? last[next] : 63, component,
                      m * across + place % across, place / across);
        }
    }
    const int32_t x = mcu % mcus_across_ * layout_.mcu_width;
    const int32_t y = mcu / mcus_across_ * layout_.mcu_height;
    const int32_t rows = std::min(layout_.mcu_height, height_ - y);
    const auto pixels = static_cast<size_t>(std::min(count * layout_.mcu_width, width_ - x));
    for (int32_t row = 0; row < rows; ++row)
        write_row(row, rows_[height_ - 1 - y - row] + size_t{3} * static_cast<size_t>(x), pixels);
}

void Renderer::write_row(int32_t row, uint8_t* bgr, size_t pixels) const {
    const int16_t* luma = &samples_[0][row * group_width];
    if (layout_.chroma_blocks == 0) {
        kernels_.grey(luma, bgr, pixels);
        return;
    }
    const int32_t chroma_height = 8 * layout_.chroma_blocks / layout_.chroma_across();
    const int32_t chroma_row = row * chroma_height / layout_.mcu_height;
    const int16_t* cb = &samples_[1][chroma_row * group_width];
    const int16_t* cr = &samples_[2][chroma_row * group_width];
    const bool wide = layout_.luma_across() != layout_.chroma_across();
    (wide ? kernels_.colour_wide : kernels_.colour)(luma, cb, cr, bgr, pixels);
}

} // namespace kirvo
