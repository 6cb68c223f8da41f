// Every kernel that reorders channels against a plain loop.
#include "core/channel_rows.hpp"
#include "internal/cpu_levels.hpp"
#include "support/random.hpp"

#include <gtest/gtest.h>
#include <vector>

using namespace kirvo;
using namespace kirvo_test;

namespace {

constexpr size_t guard = 40;

std::vector<uint8_t> reordered(const std::vector<uint8_t>& row, size_t start, size_t count,
                               const uint8_t (&order)[3]) {
    std::vector<uint8_t> result = row;
    for (size_t i = 0; i < count; ++i)
        for (size_t c = 0; c < 3; ++c)
            result[start + 3 * i + c] = row[start + 3 * i + order[c]];
    return result;
}

} // namespace

TEST(ChannelRows, every_order_at_every_level_in_place_and_not) {
    Random random(1);
    constexpr uint8_t orders[][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0},
                                     {2, 0, 1}, {2, 1, 0}, {1, 1, 1}};
    at_every_cpu_level([&](CpuLevel) {
        for (const auto& order : orders)
            for (size_t count = 0; count <= 70; ++count) {
                const size_t start = guard + count % 16;
                std::vector<uint8_t> row(2 * guard + 16 + 3 * count);
                random.fill(row.data(), row.size());
                const std::vector<uint8_t> expected = reordered(row, start, count, order);
                std::vector<uint8_t> copy = row;
                for (size_t i = 0; i < 3 * count; ++i)
                    copy[start + i] = 0xEE;
                const ChannelOrder wanted = {{order[0], order[1], order[2]}};
                reorder_channels(copy.data() + start, row.data() + start, count, wanted);
                ASSERT_EQ(copy, expected) << count;
                reorder_channels(row.data() + start, row.data() + start, count, wanted);
                ASSERT_EQ(row, expected) << count;
            }
    });
}
