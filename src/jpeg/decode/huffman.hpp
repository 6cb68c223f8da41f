// Huffman tables as the decoder holds them, and the procedure that turns bits into a symbol.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kirvo {

constexpr uint32_t longest_code = 16;

// Symbols are grouped by code length. A DC table offers 16 symbols of each length, an AC table 256;
// those listed beyond that have no place.
struct DecodeTable {
    uint8_t counts[longest_code + 1];      // codes of each length
    uint16_t first_code[longest_code + 1]; // of each length that has codes
    uint8_t first_symbol[longest_code + 1];
    uint8_t symbols[256];

    // From the 16 counts of a DHT segment and the symbols after them, 256 at most. Tells whether
    // that made it another table.
    bool set(const uint8_t* count_of_length, const uint8_t* listed);
};

constexpr int32_t dc_row = 16;
constexpr int32_t ac_row = 256;

// One symbol's decoding, bit by bit. Ones are only counted up to the first zero; from there on the
// code is held against the codes of its length.
struct SymbolWalk {
    uint16_t code;
    uint8_t length;
    bool leading_ones;

    enum class Outcome { go_on, found, no_such_code };
    Outcome step(const DecodeTable& table, int32_t row, uint32_t bit, uint8_t& symbol);

    static SymbolWalk begin() { return {0, 0, true}; }
    // What a restart marker does to a symbol under way.
    void restart() { code = length = 0; }
};

} // namespace kirvo
