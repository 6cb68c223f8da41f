// Walks rows of 24-bit pixels one by one.
#pragma once

#include "core/pixels.hpp"

namespace kirvo {

// Makes change(Rgb) of every pixel.
template<typename Change>
void each_pixel(uint8_t* to, const uint8_t* from, size_t pixels, const Change& change) {
    for (; pixels != 0; --pixels, to += 3, from += 3) {
        const Rgb changed = change(Rgb{from[2], from[1], from[0]});
        to[0] = changed.blue;
        to[1] = changed.green;
        to[2] = changed.red;
    }
}

} // namespace kirvo
