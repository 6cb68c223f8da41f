// What callers set for the encodes to come, and what an encode takes from it.
#pragma once

#include "jpeg/tables.hpp"
#include "platform/platform.hpp"

namespace kirvo {

// In natural order.
using QuantiserTable = std::array<uint8_t, 64>;

constexpr QuantiserTable table_of_ones() {
    QuantiserTable table = {};
    table.fill(1);
    return table;
}

struct EncodeSettings {
    int32_t sampling = 4; // 1: none, 2: chroma halved across, 4: both ways
    int32_t level = 4;    // 1 to 5: a fixed pair of tables; 0: the custom pair

    QuantiserTable custom_luminance = table_of_ones();
    QuantiserTable custom_chrominance = table_of_ones();
    int32_t custom_count = 64; // coefficients coded with the custom pair

    // A whole COM segment for the next stream, or null.
    HGLOBAL comment = nullptr;
    uint32_t comment_bytes = 0;

    // Of the most recent encode.
    uint32_t source_bytes = 0;
    uint32_t output_bytes = 0; // of the whole-image calls

    // Writes the tables of the level in force to slots 0 and 1.
    void fill(QuantisationSlots& slots) const;
    // How many coefficients of a block are coded; the others become 0.
    int32_t coded_count() const;
    void discard_comment();
};

} // namespace kirvo
