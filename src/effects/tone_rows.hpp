// Rows of point operations: 24-bit pixels (blue, green, red bytes) or plain bytes from one row to
// another. Any count, any alignment; both rows may be the same; nothing else is touched.
#pragma once

#include "effects/tone.hpp"

#include <cstddef>

namespace kirvo {

enum ChannelByte : uint8_t { blue_byte, green_byte, red_byte, no_byte };

// Each byte of a pixel comes from the byte of that place in the source, or is 0 from no_byte.
struct ChannelOrder {
    uint8_t from[3];
};

struct ToneRows {
    // clamp(byte * factor / 100 + offset) with factor 0..200 and offset -255..255
    void (*scale)(uint8_t* to, const uint8_t* from, size_t bytes, int32_t factor, int32_t offset);
    // levels[byte]
    void (*map)(uint8_t* to, const uint8_t* from, size_t bytes, const Levels& levels);
    // The same with a table for each channel.
    void (*map_channels)(uint8_t* to, const uint8_t* from, size_t pixels,
                         const ChannelLevels& levels);
    void (*permute)(uint8_t* to, const uint8_t* from, size_t pixels, const ChannelOrder& order);
    // (77 red + 150 green + 29 blue + 128) / 256 in all three bytes
    void (*grey)(uint8_t* to, const uint8_t* from, size_t pixels);
    // Inverts the bits that are set in pattern, which repeats every 4 bytes.
    void (*flip)(uint8_t* to, const uint8_t* from, size_t bytes, uint32_t pattern);
};

// The rows for this machine.
ToneRows tone_rows();

// The definition of each row, and for each level what it does faster.
extern const ToneRows scalar_tone_rows;
namespace sse2 {
void improve(ToneRows& rows);
}
namespace avx2 {
void improve(ToneRows& rows);
}
namespace avx512 {
void improve(ToneRows& rows); // needs VBMI
}

} // namespace kirvo
