// Pixels of 16, 24 and 32 bits as colours, by the channel rules written out bit by bit.
#pragma once

#include "support/dib_builder.hpp"

namespace kirvo_test {

struct Colour {
    uint8_t red, green, blue;
    bool operator==(const Colour&) const = default;
};

// A pixel as its 2, 3 or 4 bytes read as one number. The masks are not looked at for 24 bits.
Colour colour_of(uint32_t pixel, int bits, const Masks& masks);
uint32_t pixel_of(const Colour& colour, int bits, const Masks& masks);

// A whole block, wherever its header says that the image ends.
std::vector<uint8_t> block_bytes(HGLOBAL block);

// Where an operation looks for pixels.
struct PixelLayout {
    size_t start, stride;
};

// The colours of an image, bottom row first. Bytes beyond the block's end are 0.
std::vector<Colour> stored_colours(const Dib& dib, const PixelLayout& layout);

} // namespace kirvo_test
