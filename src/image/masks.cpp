#include "image/masks.hpp"

#include <bit>

namespace kirvo {

namespace {

bool has_masks(const LockedDib& dib) { return dib.header.biCompression == BI_BITFIELDS; }

void read_mask_words(const LockedDib& dib, uint32_t (&words)[3]) {
    dib.read_bytes(dib.header.biSize, words, sizeof words);
}

Masks masks16_of(const LockedDib& dib) {
    if (!has_masks(dib))
        return default_masks16;
    Masks masks;
    read_mask_words(dib, masks.mask);
    for (int c = 0; c < 3; ++c) {
        const auto mask = static_cast<uint16_t>(masks.mask[c]);
        masks.mask[c] = mask;
        masks.shift[c] = std::countr_zero(mask);
        // The run of ones ends at the first zero bit or after bit 15.
        masks.widen[c] = 8 - std::countr_one(static_cast<uint16_t>(mask >> (masks.shift[c] & 15)));
    }
    return masks;
}

Masks masks32_of(const LockedDib& dib) {
    if (!has_masks(dib))
        return default_masks32;
    Masks masks = {};
    read_mask_words(dib, masks.mask);
    for (int c = 0; c < 3; ++c)
        masks.shift[c] = std::countr_zero(masks.mask[c]);
    return masks;
}

// The biClrUsed entries of an 8-bit image, or 256 when that is 0.
void copy_colour_table(const LockedDib& to, const LockedDib& from) {
    const uint32_t wanted = from.header.biClrUsed != 0 ? from.header.biClrUsed : 256;
    // More entries than the destination's block can hold would be dropped anyway.
    const uint64_t count = std::min<uint64_t>(wanted, to.size() / sizeof(RGBQUAD) + 1);
    for (uint64_t i = 0; i < count; ++i) {
        RGBQUAD entry;
        from.read_bytes(from.header.biSize + i * sizeof entry, &entry, sizeof entry);
        to.write_bytes(to.header.biSize + i * sizeof entry, &entry, sizeof entry);
    }
}

} // namespace

Masks masks_of(const LockedDib& dib) {
    return dib.bits() == 16 ? masks16_of(dib) : masks32_of(dib);
}

void write_masks(const LockedDib& dib, const Masks& masks) {
    dib.write_bytes(dib.header.biSize, masks.mask, sizeof masks.mask);
}

void copy_masks(const LockedDib& to, const LockedDib& from) {
    if (!has_masks(to))
        return;
    if (!has_masks(from)) {
        write_masks(to, from.bits() == 16 ? default_masks16 : default_masks32);
        return;
    }
    uint32_t words[3];
    read_mask_words(from, words);
    to.write_bytes(to.header.biSize, words, sizeof words);
}

void copy_colour_part(const LockedDib& to, const LockedDib& from) {
    if (from.bits() == 8)
        copy_colour_table(to, from);
    else if (from.bits() == 16 || from.bits() == 32)
        copy_masks(to, from);
}

} // namespace kirvo
