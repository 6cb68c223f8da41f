// The natural (row-major) place of each position in zigzag order: T.81, Figure A.6, walked.
#pragma once

#include <array>
#include <cstdint>

namespace kirvo_test {

inline constexpr std::array<uint8_t, 64> zigzag = [] {
    std::array<uint8_t, 64> places = {};
    size_t position = 0;
    for (int diagonal = 0; diagonal < 15; ++diagonal) {
        for (int step = 0; step <= diagonal; ++step) {
            const bool upward = diagonal % 2 == 0;
            const int row = upward ? diagonal - step : step, column = diagonal - row;
            if (row < 8 && column < 8)
                places[position++] = static_cast<uint8_t>(8 * row + column);
        }
    }
    return places;
}();

} // namespace kirvo_test
