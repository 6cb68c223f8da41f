#include "core/pixels.hpp"

#include <cstring>

namespace kirvo {

uint32_t load_word(const uint8_t* pixel, size_t bytes) {
    uint32_t word = 0;
    for (size_t i = 0; i < bytes; ++i)
        word |= static_cast<uint32_t>(pixel[i]) << (8 * i);
    return word;
}

void store_word(uint8_t* pixel, uint32_t word, size_t bytes) {
    for (size_t i = 0; i < bytes; ++i)
        pixel[i] = static_cast<uint8_t>(word >> (8 * i));
}

Rgb PixelFormat::load(const uint8_t* pixel) const {
    if (bits == 24)
        return {pixel[2], pixel[1], pixel[0]};
    const uint32_t word = load_word(pixel, bytes());
    return {channel(word, 0), channel(word, 1), channel(word, 2)};
}

void PixelFormat::store(uint8_t* pixel, const Rgb& colour) const {
    if (bits == 24) {
        pixel[0] = colour.blue;
        pixel[1] = colour.green;
        pixel[2] = colour.red;
    } else {
        store_word(pixel, pack(colour), bytes());
    }
}

void unpack_row(const PixelFormat& format, const uint8_t* row, uint8_t* bgr, size_t count) {
    if (format.bits == 24) {
        std::memmove(bgr, row, 3 * count);
        return;
    }
    const size_t bytes = format.bytes();
    for (size_t i = 0; i < count; ++i, row += bytes, bgr += 3) {
        const Rgb colour = format.load(row);
        bgr[0] = colour.blue;
        bgr[1] = colour.green;
        bgr[2] = colour.red;
    }
}

void pack_row(const PixelFormat& format, const uint8_t* bgr, uint8_t* row, size_t count) {
    if (format.bits == 24) {
        std::memmove(row, bgr, 3 * count);
        return;
    }
    const size_t bytes = format.bytes();
    for (size_t i = 0; i < count; ++i, row += bytes, bgr += 3)
        format.store(row, {bgr[2], bgr[1], bgr[0]});
}

} // namespace kirvo
