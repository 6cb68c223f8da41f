#include "core/channel_rows.hpp"

#include "simd/cpu.hpp"

namespace kirvo {

void reorder_row_scalar(uint8_t* to, const uint8_t* from, size_t count, ChannelOrder order) {
    for (; count != 0; --count, to += 3, from += 3) {
        const uint8_t pixel[3] = {from[0], from[1], from[2]};
        for (int c = 0; c < 3; ++c)
            to[c] = pixel[order.from[c]];
    }
}

void reorder_channels(uint8_t* to, const uint8_t* from, size_t count, ChannelOrder order) {
    const CpuLevel level = cpu_level();
    const ReorderRow row = level >= CpuLevel::avx2   ? avx2::reorder_row
                           : level >= CpuLevel::sse2 ? sse2::reorder_row
                                                     : reorder_row_scalar;
    row(to, from, count, order);
}

} // namespace kirvo
