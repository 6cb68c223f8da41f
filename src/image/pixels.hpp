// Pixels of 16, 24 and 32 bits as 8-bit channels, one at a time and a row at a time.
//
// Operations are written once, over rows of 24-bit pixels (blue, green, red bytes): rows of other
// depths are unpacked into such a row and packed again.
#pragma once

#include "image/masks.hpp"
#include "simd/kernel_types.hpp"

namespace kirvo {

// Of a colour 0x00BBGGRR.
constexpr Rgb rgb_of(uint32_t colour) {
    return {static_cast<uint8_t>(colour), static_cast<uint8_t>(colour >> 8),
            static_cast<uint8_t>(colour >> 16)};
}

// Shifts left by a count that may be negative, which shifts right.
constexpr uint32_t shift_left(uint32_t value, int32_t count) {
    return count >= 0 ? value << (count & 31) : value >> (-count & 31);
}

// How the pixels of one image hold their channels.
struct PixelFormat {
    int32_t bits; // 16, 24 or 32
    Masks masks;  // unused at 24 bits

    static PixelFormat of(const LockedDib& dib) {
        return {dib.bits(), dib.bits() == 24 ? Masks{} : masks_of(dib)};
    }
    size_t bytes() const { return static_cast<size_t>(bits / 8); }
    // The bytes of a pixel are its channels, in any order, and perhaps one more, which is no channel.
    bool has_byte_channels() const;
    bool operator==(const PixelFormat&) const = default;

    // One channel of a pixel word, scaled to 8 bits: the freed low bits are 0.
    uint8_t channel(uint32_t pixel, int c) const {
        const uint32_t value = (pixel & masks.mask[c]) >> (masks.shift[c] & 31);
        return static_cast<uint8_t>(bits == 16 ? shift_left(value & 0xFF, masks.widen[c]) : value);
    }
    // A channel value put under its mask. Bits of value above 8 are cut away by the mask.
    uint32_t under_mask(uint32_t value, int c) const {
        if (bits == 16)
            value = shift_left(value, -masks.widen[c]);
        return (value << (masks.shift[c] & 31)) & masks.mask[c];
    }
    uint32_t pack(const Rgb& colour) const {
        return under_mask(colour.red, 0) | under_mask(colour.green, 1) | under_mask(colour.blue, 2);
    }

    Rgb load(const uint8_t* pixel) const;
    void store(uint8_t* pixel, const Rgb& colour) const;
};

// Pixel words, whatever their alignment.
uint32_t load_word(const uint8_t* pixel, size_t bytes);
void store_word(uint8_t* pixel, uint32_t word, size_t bytes);

constexpr PixelFormat format24 = {24, {}};

// Rows of count pixels from one depth to another; pixels of the same depth are copied as they are.
// Source and destination must not overlap, except that a row is copied onto itself.
void convert_row(const PixelFormat& from_format, const uint8_t* from, const PixelFormat& to_format,
                 uint8_t* to, size_t count);

// Rows of count pixels to and from 24-bit pixels. Source and destination must not overlap, except
// that a 24-bit format copies onto itself.
void unpack_row(const PixelFormat& format, const uint8_t* row, uint8_t* bgr, size_t count);
void pack_row(const PixelFormat& format, const uint8_t* bgr, uint8_t* row, size_t count);

// Bits of the channels of 24-bit pixels: blue, green, red.
class ChannelBits {
  public:
    constexpr explicit ChannelBits(const uint8_t (&bits)[3]) {
        for (size_t i = 0; i < sizeof pattern_; ++i)
            pattern_[i] = bits[i % 3];
    }
    // What has these bits of count pixels; both rows may be the same.
    void keep(uint8_t* to, const uint8_t* from, size_t count) const;

  private:
    uint8_t pattern_[48] = {}; // whole pixels and whole vectors
};

// The entries of the colour table at the given byte of the block; those beyond its end are black.
struct ColourTable {
    RGBQUAD entry[256];
    ColourTable(const LockedDib& dib, uint64_t offset) {
        dib.read_bytes(offset, entry, sizeof entry);
    }
    Rgb operator[](uint8_t index) const {
        return {entry[index].rgbRed, entry[index].rgbGreen, entry[index].rgbBlue};
    }
};

} // namespace kirvo
