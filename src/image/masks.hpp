// Channel masks of 16- and 32-bit images, colour tables, and carrying both to a new image.
#pragma once

#include "image/dib.hpp"

namespace kirvo {

// Element 0 is red, 1 green, 2 blue.
struct Masks {
    uint32_t mask[3];
    int32_t shift[3]; // zero bits below the mask; 16 or 32 for an empty one
    int32_t widen[3]; // 16-bit images: 8 minus the mask's bits, below 0 for a mask wider than 8

    uint32_t sum() const { return mask[0] + mask[1] + mask[2]; }
    bool operator==(const Masks&) const = default;
};

constexpr Masks default_masks16 = {{0x7C00, 0x03E0, 0x001F}, {10, 5, 0}, {3, 3, 3}};
constexpr Masks default_masks32 = {{0xFF0000, 0x00FF00, 0x0000FF}, {16, 8, 0}, {0, 0, 0}};

// Of a 16- or 32-bit image.
Masks masks_of(const LockedDib& dib);
// Writes three mask words after the header.
void write_masks(const LockedDib& dib, const Masks& masks);

// To a destination with BI_BITFIELDS; others are left alone.
void copy_masks(const LockedDib& to, const LockedDib& from);

// What a new image of the source's depth takes over: the colour table at 8 bits, the masks at 16
// and 32.
void copy_colour_part(const LockedDib& to, const LockedDib& from);

} // namespace kirvo
