// The zooms' kernels at every level of the processor against plain loops.
#include "effects/zoom_rows.hpp"

#include "internal/cpu_levels.hpp"
#include "internal/guarded.hpp"
#include "support/random.hpp"

#include <bit>
#include <cstring>
#include <gtest/gtest.h>

using namespace kirvo;
using namespace kirvo_test;

TEST(ZoomRows, gather_any_pixels) {
    Random random(1);
    at_every_cpu_level([&](CpuLevel) {
        for (size_t bytes = 1; bytes <= 4; ++bytes)
            for (size_t count = 1; count < 60; ++count) {
                const size_t pixels = 1 + count % 40;
                Guarded to(bytes * count, count % 9), from(1 + bytes * pixels, count % 7);
                random.fill(from.data(), 1 + bytes * pixels);
                const uint8_t* row = from.data() + 1; // the byte before it may be read
                std::vector<uint32_t> offsets;
                std::vector<uint8_t> expected(bytes * count);
                for (size_t i = 0; i < count; ++i) {
                    offsets.push_back(static_cast<uint32_t>(
                        bytes * size_t(random.between(0, int32_t(pixels) - 1))));
                    std::memcpy(&expected[bytes * i], row + offsets[i], bytes);
                }
                zoom_rows().gather[bytes - 1](to.data(), row, offsets.data(), count);
                ASSERT_EQ(to.content(), expected);
                ASSERT_TRUE(to.intact());
            }
    });
}

TEST(ZoomRows, add_a_row_to_sums) {
    Random random(2);
    at_every_cpu_level([&](CpuLevel) {
        for (size_t count = 0; count < 70; ++count) {
            std::vector<uint16_t> sums(count + 1, 0xFF00), expected(count + 1, 0xFF00);
            std::vector<uint8_t> row(count);
            random.fill(row.data(), count);
            for (size_t i = 0; i < count; ++i)
                expected[i] = static_cast<uint16_t>(0xFF00 + row[i]);
            zoom_rows().add_row(sums.data(), row.data(), count);
            ASSERT_EQ(sums, expected);
        }
    });
}

namespace {

void check_means(size_t columns, size_t rows, size_t count, bool white, Random& random) {
    const size_t width = 3 * columns * count, step = width + count % 4;
    Guarded to(3 * count, count % 9), from(step * (rows - 1) + width, count % 7);
    random.fill(from.data(), step * (rows - 1) + width);
    if (white)
        std::memset(from.data(), 0xFF, step * (rows - 1) + width);
    std::vector<uint8_t> expected(3 * count);
    for (size_t i = 0; i < 3 * count; ++i) {
        size_t sum = 0;
        for (size_t k = 0; k < rows; ++k)
            for (size_t x = 0; x < columns; ++x)
                sum += from.data()[k * step + 3 * (i / 3 * columns + x) + i % 3];
        expected[i] = static_cast<uint8_t>(sum / (columns * rows));
    }
    const ZoomRows kernels = zoom_rows();
    (columns == 2 ? kernels.means_of_2 : kernels.means_of_4)(
        to.data(), from.data() + step * (rows - 1), -ptrdiff_t(step), rows, count,
        std::countr_zero(columns * rows));
    ASSERT_EQ(to.content(), expected) << columns << " x " << rows << ", " << count;
    ASSERT_TRUE(to.intact() && from.intact());
}

} // namespace

TEST(ZoomRows, average_even_boxes) {
    Random random(3);
    at_every_cpu_level([&](CpuLevel) {
        for (size_t columns : {2u, 4u})
            for (size_t rows = 1; columns * rows <= 256; rows *= 2)
                for (size_t count = 0; count<40; count += rows> 8 ? 13 : 1)
                    ASSERT_NO_FATAL_FAILURE(
                        check_means(columns, rows, count, count % 5 == 0, random));
    });
}
