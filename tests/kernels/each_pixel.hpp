// Walks rows of 24-bit pixels one by one.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace kirvo_test {

// Lets change(uint8_t* pixel) work on a copy of every pixel.
template<typename Change>
void each_pixel(uint8_t* to, const uint8_t* from, size_t pixels, const Change& change) {
    for (size_t i = 0; i < 3 * pixels; i += 3) {
        uint8_t pixel[3] = {from[i], from[i + 1], from[i + 2]};
        change(pixel);
        std::copy_n(pixel, 3, to + i);
    }
}

} // namespace kirvo_test
