// From coefficients to pixels of the image, a few MCUs of one MCU row at a time.
#pragma once

#include "image/dib.hpp"
#include "jpeg/decode/block.hpp"
#include "simd/kernels.hpp"
#include "jpeg/decode/state.hpp"

#include <array>
#include <optional>

namespace kirvo {

// As many pixels as are rendered at once across.
constexpr int32_t batch_width = 64;

class Renderer {
  public:
    // What the blocks of each component are to be multiplied by, in zigzag order.
    using Quantisation = std::array<const uint16_t*, 3>;

    // Into an image of the frame's size, which is locked when there is something to render first:
    // small pieces of a stream seldom come as far.
    Renderer(const Frame& frame, HGLOBAL image, const Quantisation& quantisation);

    int32_t batch_mcus() const { return batch_width / layout_.mcu_width; }
    // Renders MCUs that stand side by side from one of the image on. last holds the zigzag position
    // after which each block is 0; null when that is not known.
    void render(int32_t mcu, int32_t count, const Block* blocks, const uint8_t* last);

  private:
    void open();
    void transform(const Block* blocks, const uint8_t* last, int32_t count);
    void find_terms(int32_t count);
    void write_row(int32_t row, uint8_t* bgr, size_t pixels);
    ChromaTerms terms_of(int32_t row);

    const Layout& layout_;
    const int32_t width_, height_, mcus_across_;
    const int32_t chroma_height_; // of an MCU
    const HGLOBAL handle_;
    const Kernels& kernels_;
    std::optional<LockedDib> image_;
    Rows rows_ = {};
    const Quantisation quantisation_;
    Block quantisers_[3];
    struct Slot {
        const int16_t* quantisers;
        int16_t* samples; // of the batch's first MCU
        int32_t step;     // to the next MCU
    } slots_[most_blocks];
};

} // namespace kirvo
