// What callers set for the encodes to come, and what an encode takes from it.
#pragma once

#include "platform/platform.hpp"

#include <array>

namespace kirvo {

// 64 quantisers.
using QuantiserTable = std::array<int16_t, 64>;

struct EncodeSettings {
    int32_t sampling = 4;      // 1: none, 2: chroma halved across, 4: both ways
    int32_t level = 4;         // 1 to 5: a fixed pair of tables; 0: the custom pair
    int32_t custom_count = 64; // coefficients coded with the custom pair

    // A whole COM segment for the next stream, or null.
    HGLOBAL comment = nullptr;
    uint32_t comment_bytes = 0;

    // Of the most recent encode.
    uint32_t source_bytes = 0;
    uint32_t output_bytes = 0; // of the whole-image calls
};

extern EncodeSettings encode_settings;

void discard_comment();

// The quantisers of one encode in zigzag order; coefficients at or past count are coded as 0.
struct EncodeTables {
    QuantiserTable luminance;
    QuantiserTable chrominance;
    int32_t count;
};

// The tables of the level in force; also written to quantisation slots 0 and 1.
EncodeTables prepare_tables();

} // namespace kirvo
