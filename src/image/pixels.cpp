#include "image/pixels.hpp"

#include "simd/kernels.hpp"

#include <cstring>
#include <iterator>

namespace kirvo {

namespace {

// Bit of a pixel word at which the 8 bits of channel c start. Those of a channel that has more or
// fewer than 8 of them are thereby aligned at its top (16 bits) or bottom (32 bits).
int32_t channel_bit(const PixelFormat& format, int c) {
    if (format.bits == 24)
        return 16 - 8 * c;
    return (format.masks.shift[c] & 31) - (format.bits == 16 ? format.masks.widen[c] : 0);
}

// What of the 8 bits of a channel a format holds, in its words.
uint32_t held_bits(const PixelFormat& format, int c, uint32_t channel) {
    const uint32_t mask = format.bits == 24 ? ~0u : format.masks.mask[c];
    return shift_left(channel, channel_bit(format, c)) & mask;
}

// A channel is carried over as 8 bits, so what arrives is what the source gives for a pixel of
// ones. Where the way is 32 bits or more, nothing does.
FieldMove move_of(const PixelFormat& from, const PixelFormat& to, int c) {
    const uint32_t channel = from.bits == 24 ? 0xFF : from.channel(~0u, c);
    const int32_t left = channel_bit(to, c) - channel_bit(from, c);
    return {static_cast<uint32_t>(left < 0 ? -left : 0) & 31,
            static_cast<uint32_t>(left > 0 ? left : 0) & 31, held_bits(to, c, channel)};
}

Kernels::ConvertPixels converter(int32_t from_bits, int32_t to_bits) {
    const Kernels& k = kernels();
    switch (from_bits) {
    case 16:
        return to_bits == 24 ? k.from16to24 : k.from16to32;
    case 24:
        return to_bits == 16 ? k.from24to16 : k.from24to32;
    default:
        return to_bits == 16 ? k.from32to16 : k.from32to24;
    }
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

bool PixelFormat::has_byte_channels() const {
    if (bits != 32)
        return bits == 24;
    uint32_t used = 0;
    for (uint32_t mask : masks.mask) {
        const bool is_byte =
            mask == 0xFF || mask == 0xFF00 || mask == 0xFF0000 || mask == 0xFF000000;
        if (!is_byte || (used & mask) != 0)
            return false;
        used |= mask;
    }
    return true;
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

void convert_row(const PixelFormat& from_format, const uint8_t* from, const PixelFormat& to_format,
                 uint8_t* to, size_t count) {
    if (from_format.bits == to_format.bits) {
        std::memmove(to, from, from_format.bytes() * count);
        return;
    }
    const PixelMoves moves = {{move_of(from_format, to_format, 0),
                               move_of(from_format, to_format, 1),
                               move_of(from_format, to_format, 2)}};
    converter(from_format.bits, to_format.bits)(from, to, count, moves);
}

void unpack_row(const PixelFormat& format, const uint8_t* row, uint8_t* bgr, size_t count) {
    convert_row(format, row, format24, bgr, count);
}

void pack_row(const PixelFormat& format, const uint8_t* bgr, uint8_t* row, size_t count) {
    convert_row(format24, bgr, format, row, count);
}

void ChannelBits::keep(uint8_t* to, const uint8_t* from, size_t count) const {
    // Vectors by name: the compiler makes none of bytes that may be those just stored.
    using Vector [[gnu::vector_size(16), gnu::aligned(1), gnu::may_alias]] = uint8_t;
    Vector kept[sizeof pattern_ / sizeof(Vector)];
    std::memcpy(kept, pattern_, sizeof kept);
    const auto keep_whole = [&](uint8_t* out, const uint8_t* in) {
#pragma GCC unroll 3
        for (size_t i = 0; i < std::size(kept); ++i)
            reinterpret_cast<Vector*>(out)[i] = reinterpret_cast<const Vector*>(in)[i] & kept[i];
    };
    size_t bytes = 3 * count;
    for (; bytes >= sizeof kept; bytes -= sizeof kept, to += sizeof kept, from += sizeof kept)
        keep_whole(to, from);
    uint8_t rest[sizeof kept];
    std::memcpy(rest, from, bytes);
    keep_whole(rest, rest);
    std::memcpy(to, rest, bytes);
}

} // namespace kirvo
