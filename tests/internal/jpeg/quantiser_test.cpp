// Quantiser tables as the encoder's kernels use them.
#include "jpeg/encode/quantiser.hpp"

#include <algorithm>
#include <gtest/gtest.h>

using namespace kirvo;

namespace {

Quantiser quantiser_of(int divisor, int32_t count) {
    uint8_t table[64];
    std::fill_n(table, 64, static_cast<uint8_t>(divisor));
    Quantiser quantiser;
    set_quantiser(quantiser, table, count);
    return quantiser;
}

// In 16-bit numbers, as the kernels have them.
uint32_t level_of(const Quantiser& quantiser, size_t n, uint32_t magnitude) {
    const uint32_t biased = (magnitude + quantiser.bias[n / 8][n % 8]) & 0xFFFF;
    const uint32_t product = biased * quantiser.reciprocal[n / 8][n % 8] >> 16;
    return product * quantiser.scale[n / 8][n % 8] >> 16;
}

} // namespace

TEST(Quantiser, ReciprocalsGiveTheRoundedQuotientOfEveryMagnitude) {
    for (int divisor = 1; divisor < 256; ++divisor) {
        const Quantiser quantiser = quantiser_of(divisor, 63);
        const auto q = static_cast<uint32_t>(divisor);
        for (const size_t n : {size_t{0}, size_t{35}, size_t{62}}) {
            ASSERT_EQ(quantiser.divisor[n], divisor);
            for (uint32_t magnitude = 0; magnitude < 4096; ++magnitude)
                ASSERT_EQ(level_of(quantiser, n, magnitude), (magnitude + q / 2) / q)
                    << magnitude << " over " << divisor;
        }
    }
}

TEST(Quantiser, PositionsBehindTheCountAreNotCoded) {
    const Quantiser quantiser = quantiser_of(7, 63); // the last in either order is not coded
    EXPECT_EQ(quantiser.divisor[63], 0);
    for (uint32_t magnitude = 0; magnitude < 4096; ++magnitude)
        ASSERT_EQ(level_of(quantiser, 63, magnitude), 0u);
    const Quantiser coarse = quantiser_of(7, 2); // in zigzag order
    EXPECT_EQ(coarse.divisor[0], 7);
    EXPECT_EQ(coarse.divisor[1], 7);
    EXPECT_EQ(std::count(coarse.divisor, coarse.divisor + 64, 0), 62);
}

TEST(Quantiser, RowsStandThereForEachBlock) {
    uint8_t table[64];
    for (size_t i = 0; i < 64; ++i)
        table[i] = static_cast<uint8_t>(3 * i + 1);
    Quantiser quantiser;
    set_quantiser(quantiser, table, 64);
    for (const auto* rows : {&quantiser.bias, &quantiser.reciprocal, &quantiser.scale})
        for (const auto& row : *rows)
            for (size_t i = 8; i < std::size(row); ++i)
                ASSERT_EQ(row[i], row[i - 8]);
}
