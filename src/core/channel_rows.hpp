// Rows of 24-bit pixels with the three bytes of each pixel in another order.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kirvo {

// Byte c of each pixel is what byte from[c] was.
struct ChannelOrder {
    uint8_t from[3];
};

constexpr ChannelOrder red_blue_swapped = {{2, 1, 0}};

// Touches count pixels and nothing else. `to` may be `from`; otherwise they must not overlap.
using ReorderRow = void (*)(uint8_t* to, const uint8_t* from, size_t count, ChannelOrder order);

void reorder_channels(uint8_t* to, const uint8_t* from, size_t count, ChannelOrder order);

void reorder_row_scalar(uint8_t* to, const uint8_t* from, size_t count, ChannelOrder order);
namespace sse2 {
void reorder_row(uint8_t* to, const uint8_t* from, size_t count, ChannelOrder order);
}
namespace avx2 {
void reorder_row(uint8_t* to, const uint8_t* from, size_t count, ChannelOrder order);
}

} // namespace kirvo
