#include "jpeg/decode/render.hpp"

#include <algorithm>

namespace kirvo {

namespace {

// Rows of a batch. Not made anew for each piece of a stream.
using Plane = int16_t[16 * batch_width];
alignas(64) constinit Plane samples[3] = {};
alignas(64) constinit Plane terms[3] = {};

// Where the next batch's pixels of a row will be written, while its bits are being read.
void prefetch(const uint8_t* bgr) {
    constexpr ptrdiff_t line = 64, bytes = 3 * batch_width;
    for (ptrdiff_t at = 0; at <= bytes; at += line)
        __builtin_prefetch(bgr + at, 1);
}

} // namespace

Renderer::Renderer(const Frame& frame, HGLOBAL image, const Quantisation& quantisation)
    : layout_(*frame.layout), width_(frame.width), height_(frame.height),
      mcus_across_((frame.width + layout_.mcu_width - 1) / layout_.mcu_width),
      chroma_height_(
          layout_.chroma_blocks == 0 ? 0 : 8 * layout_.chroma_blocks / layout_.chroma_across()),
      handle_(image), kernels_(kernels()), quantisation_(quantisation) {}

void Renderer::open() {
    image_.emplace(handle_);
    rows_ = image_->rows(RowStart::after_header);
    for (size_t c = 0; c < quantisation_.size(); ++c) {
        for (size_t k = 0; k < 64; ++k)
            quantisers_[c][block_place[k]] = static_cast<int16_t>(quantisation_[c][k]);
    }
    for (int32_t i = 0; i < layout_.blocks(); ++i) {
        const int32_t component = component_of(layout_, i);
        const int32_t place =
            component == 0 ? i : (i - layout_.luma_blocks) % layout_.chroma_blocks;
        const int32_t across = component == 0 ? layout_.luma_across() : layout_.chroma_across();
        slots_[i] = {quantisers_[component],
                     &samples[component][(place / across * batch_width + place % across) * 8],
                     8 * across};
    }
}

void Renderer::transform(const Block* blocks, const uint8_t* last, int32_t count) {
    const int32_t blocks_of_mcu = layout_.blocks();
    for (int32_t m = 0; m < count; ++m) {
        for (int32_t i = 0; i < blocks_of_mcu; ++i)
            kernels_.inverse_dct(*blocks++, slots_[i].quantisers, last != nullptr ? *last++ : 63,
                                 slots_[i].samples + m * slots_[i].step, batch_width);
    }
}

ChromaTerms Renderer::terms_of(int32_t row) {
    const int32_t at = row * batch_width;
    return {&terms[0][at], &terms[1][at], &terms[2][at]};
}

void Renderer::find_terms(int32_t count) {
    const auto width = static_cast<size_t>(8 * count * layout_.chroma_across());
    for (int32_t row = 0; row < chroma_height_; ++row)
        kernels_.chroma_terms(&samples[1][row * batch_width], &samples[2][row * batch_width],
                              terms_of(row), width);
}

void Renderer::render(int32_t mcu, int32_t count, const Block* blocks, const uint8_t* last) {
    if (!image_)
        open();
    transform(blocks, last, count);
    find_terms(count);
    const int32_t x = mcu % mcus_across_ * layout_.mcu_width;
    const int32_t y = mcu / mcus_across_ * layout_.mcu_height;
    const int32_t rows = std::min(layout_.mcu_height, height_ - y);
    const auto pixels = static_cast<size_t>(std::min(count * layout_.mcu_width, width_ - x));
    for (int32_t row = 0; row < rows; ++row)
        write_row(row, rows_[height_ - 1 - y - row] + size_t{3} * static_cast<size_t>(x), pixels);
    const int32_t next = x + static_cast<int32_t>(pixels);
    for (int32_t row = 0; row < rows && next < width_; ++row)
        prefetch(rows_[height_ - 1 - y - row] + size_t{3} * static_cast<size_t>(next));
}

void Renderer::write_row(int32_t row, uint8_t* bgr, size_t pixels) {
    const int16_t* luma = &samples[0][row * batch_width];
    const ChromaTerms chroma = terms_of(chroma_height_ == layout_.mcu_height ? row : row / 2);
    if (chroma_height_ == 0)
        kernels_.decoded_grey(luma, bgr, pixels);
    else if (layout_.luma_across() == layout_.chroma_across())
        kernels_.decoded_colour(luma, chroma, bgr, pixels);
    else
        kernels_.decoded_colour_wide(luma, chroma, bgr, pixels);
}

} // namespace kirvo
