// Coefficient blocks.
#pragma once

#include "jpeg/tables.hpp"

namespace kirvo {

// 64 coefficients as the inverse transform wants them: see block_place_of.
using Block = int16_t[64];

// Tables by zigzag position are longer than a block where a run may lead beyond its end.
constexpr size_t padded_block = 64 + 32;

// Place in a Block of each zigzag position. Beyond the end it is the place of the DC coefficient.
inline constexpr std::array<uint8_t, padded_block> block_place = [] {
    std::array<uint8_t, padded_block> places = {};
    for (size_t k = 0; k < zigzag.size(); ++k)
        places[k] = static_cast<uint8_t>(block_place_of(zigzag[k] / 8, zigzag[k] % 8));
    return places;
}();

// The quantisation of what is not to be multiplied, or not yet.
inline constexpr std::array<uint16_t, padded_block> no_quantisation = [] {
    std::array<uint16_t, padded_block> ones = {};
    ones.fill(1);
    return ones;
}();

// Integers of 16 bits that wrap.
constexpr int16_t wrap16(int32_t value) {
    return static_cast<int16_t>(value);
}
constexpr int16_t shift16(int16_t value, int32_t count) {
    return static_cast<int16_t>(static_cast<uint32_t>(value) << count);
}

// The value that the s bits v stand for; T.81, F.2.2.1. s is 1 to 16. Signs are random, so there is
// no branch.
constexpr int16_t extend(uint32_t v, uint32_t s) {
    const uint32_t negative = (v >> (s - 1)) - 1; // all ones or 0
    return static_cast<int16_t>(v - (((1u << s) - 1) & negative));
}

} // namespace kirvo
