// Coefficient blocks.
#pragma once

#include "jpeg/tables.hpp"

namespace kirvo {

// 64 coefficients, column by column: the inverse transform wants the coefficients of one horizontal
// frequency side by side.
using Block = int16_t[64];

// Place in a Block of each zigzag position.
inline constexpr std::array<uint8_t, 64> block_place = [] {
    std::array<uint8_t, 64> places = {};
    for (size_t k = 0; k < places.size(); ++k)
        places[k] = static_cast<uint8_t>(zigzag[k] % 8 * 8 + zigzag[k] / 8);
    return places;
}();

// Integers of 16 bits that wrap.
constexpr int16_t wrap16(int32_t value) { return static_cast<int16_t>(value); }
constexpr int16_t shift16(int16_t value, int32_t count) {
    return static_cast<int16_t>(static_cast<uint32_t>(value) << count);
}

// The value that the s bits v stand for; T.81, F.2.2.1. s is 1 to 16.
constexpr int16_t extend(uint32_t v, uint32_t s) {
    return static_cast<int16_t>(v >> (s - 1) != 0 ? v : v - ((1u << s) - 1));
}

} // namespace kirvo
