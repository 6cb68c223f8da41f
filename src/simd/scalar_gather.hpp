// Pixels gathered one by one, which no level does faster.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kirvo {
namespace {

template<size_t bytes>
void gather(uint8_t* to, const uint8_t* from, const uint32_t* offsets, size_t pixels) {
    for (size_t i = 0; i < pixels; ++i, to += bytes)
        std::memcpy(to, from + offsets[i], bytes);
}

// Moves four bytes for three: the fourth of a word is overwritten by the next pixel.
void gather_24(uint8_t* to, const uint8_t* from, const uint32_t* offsets, size_t pixels) {
    for (; pixels > 1; --pixels, ++offsets, to += 3) {
        uint32_t word;
        std::memcpy(&word, from + *offsets - 1, sizeof word);
        word >>= 8;
        std::memcpy(to, &word, sizeof word);
    }
    if (pixels != 0)
        std::memcpy(to, from + *offsets, 3);
}

} // namespace
} // namespace kirvo
