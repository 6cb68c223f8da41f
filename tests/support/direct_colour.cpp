#include "support/direct_colour.hpp"

namespace kirvo_test {

namespace {

struct Field {
    uint32_t mask;
    int low = 0;   // position of its lowest one bit
    int width = 0; // length of the run of ones that starts there
    Field(uint32_t wide_mask, int bits) : mask(bits == 16 ? wide_mask & 0xFFFF : wide_mask) {
        while (low < bits && !(mask >> low & 1))
            ++low;
        while (low + width < bits && (mask >> (low + width) & 1))
            ++width;
    }
};

uint8_t read_channel(uint32_t pixel, int bits, const Field& field) {
    if (field.mask == 0)
        return 0;
    uint32_t value = ((pixel & field.mask) >> field.low) & 0xFF;
    if (bits == 16)
        value = field.width <= 8 ? value << (8 - field.width) : value >> (field.width - 8);
    return static_cast<uint8_t>(value);
}

uint32_t write_channel(uint32_t value, int bits, const Field& field) {
    if (field.mask == 0)
        return 0;
    if (bits == 16)
        value = field.width <= 8 ? value >> (8 - field.width) : value << (field.width - 8);
    return (value << field.low) & field.mask;
}

} // namespace

Colour colour_of(uint32_t pixel, int bits, const Masks& masks) {
    if (bits == 24)
        return {static_cast<uint8_t>(pixel >> 16), static_cast<uint8_t>(pixel >> 8),
                static_cast<uint8_t>(pixel)};
    return {read_channel(pixel, bits, Field(masks.red, bits)),
            read_channel(pixel, bits, Field(masks.green, bits)),
            read_channel(pixel, bits, Field(masks.blue, bits))};
}

uint32_t pixel_of(const Colour& colour, int bits, const Masks& masks) {
    if (bits == 24)
        return colour.blue + 0x100u * colour.green + 0x10000u * colour.red;
    return write_channel(colour.red, bits, Field(masks.red, bits)) |
           write_channel(colour.green, bits, Field(masks.green, bits)) |
           write_channel(colour.blue, bits, Field(masks.blue, bits));
}

std::vector<uint8_t> block_bytes(HGLOBAL block) {
    const auto* bytes = static_cast<const uint8_t*>(GlobalLock(block));
    std::vector<uint8_t> copy(bytes, bytes + GlobalSize(block));
    GlobalUnlock(block);
    return copy;
}

std::vector<Colour> stored_colours(const Dib& dib, const PixelLayout& layout) {
    const std::vector<uint8_t> block = block_bytes(dib);
    const int bits = dib.bits();
    const Masks masks = bits == 24 ? Masks{} : dib.masks();
    const int32_t width = dib.width(), height = dib.height();
    std::vector<Colour> colours;
    for (int32_t row = 0; row < height; ++row) {
        for (int32_t x = 0; x < width; ++x) {
            uint32_t pixel = 0;
            for (int b = 0; b < bits / 8; ++b) {
                const size_t at = layout.start + static_cast<size_t>(row) * layout.stride +
                                  static_cast<size_t>(x * (bits / 8) + b);
                pixel |= at < block.size() ? static_cast<uint32_t>(block[at]) << 8 * b : 0;
            }
            colours.push_back(colour_of(pixel, bits, masks));
        }
    }
    return colours;
}

} // namespace kirvo_test
