// What the JPEG encoder has to write, worked out step by step without regard for speed.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

namespace kirvo_test {

struct ReferencePixel {
    int red, green, blue;
};

struct ReferenceJob {
    int width, height;
    std::function<ReferencePixel(int x, int y)> pixel; // of the region, from its top left
    bool grey = false;                                 // the blue channel is the grey level
    int mode = 4;
    int level = 4;
    // For level 0, in natural order.
    std::array<int, 64> luminance{}, chrominance{};
    int count = 64;
    std::vector<uint8_t> comment_segment{};
};

std::vector<uint8_t> reference_stream(const ReferenceJob& job);

} // namespace kirvo_test
