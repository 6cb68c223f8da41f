#include "core/pixels.hpp"

#include "core/cpu.hpp"
#include "core/pixel_rows.hpp"

#include <cstring>

namespace kirvo {

namespace {

const PixelRows& pixel_rows() {
    switch (cpu_level()) {
    case CpuLevel::avx512:
        return cpu_has_vbmi() ? avx512::pixel_rows : avx2::pixel_rows;
    case CpuLevel::avx2:
        return avx2::pixel_rows;
    case CpuLevel::sse2:
        return sse2::pixel_rows;
    default:
        return pixel_rows_scalar;
    }
}

FieldMove move_left(int32_t count, uint32_t keep) {
    return count >= 0 ? FieldMove{0, static_cast<uint32_t>(count), keep}
                      : FieldMove{static_cast<uint32_t>(-count), 0, keep};
}

// Bit of the word blue | green << 8 | red << 16 at which channel c starts.
constexpr int32_t bgr_bit(int c) { return 16 - 8 * c; }

// Bits to the left that the 8 bits of channel c stand in a pixel word. The bits of a channel that
// has more or fewer than 8 of them are thereby aligned at its top (16 bits) or bottom (32 bits).
int32_t word_bit(const PixelFormat& format, int c) {
    return (format.masks.shift[c] & 31) - (format.bits == 16 ? format.masks.widen[c] : 0);
}

PixelMoves from_bgr(const PixelFormat& format) {
    PixelMoves moves;
    for (int c = 0; c < 3; ++c) {
        const uint32_t channel = shift_left(0xFF, word_bit(format, c)) & format.masks.mask[c];
        moves.channel[c] = move_left(word_bit(format, c) - bgr_bit(c), channel);
    }
    return moves;
}

// What a row of all-ones pixels gives is what the channel keeps.
PixelMoves to_bgr(const PixelFormat& format) {
    PixelMoves moves;
    for (int c = 0; c < 3; ++c) {
        const uint32_t channel = format.channel(~0u, c);
        moves.channel[c] = move_left(bgr_bit(c) - word_bit(format, c), channel << bgr_bit(c));
    }
    return moves;
}

} // namespace

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
    const PixelRows& rows = pixel_rows();
    (format.bits == 16 ? rows.unpack16 : rows.unpack32)(row, bgr, count, to_bgr(format));
}

void pack_row(const PixelFormat& format, const uint8_t* bgr, uint8_t* row, size_t count) {
    if (format.bits == 24) {
        std::memmove(row, bgr, 3 * count);
        return;
    }
    const PixelRows& rows = pixel_rows();
    (format.bits == 16 ? rows.pack16 : rows.pack32)(bgr, row, count, from_bgr(format));
}

} // namespace kirvo
