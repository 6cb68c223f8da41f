// Which copies go past the caches.

#include "image/stream.hpp"

#include "image/duplicate.hpp"
#include "internal/cpu_levels.hpp"
#include "simd/kernels.hpp"
#include "support/random.hpp"

#include <gtest/gtest.h>

using namespace kirvo;
using namespace kirvo_test;

TEST(Stream, OnlyLongRunsOfLargeResultsGoPastTheCaches) {
    constexpr size_t large = 16 << 20;
    at_every_cpu_level([](CpuLevel) {
        const CopyBytes past = kernels().copy_past_caches;
        EXPECT_EQ(copy_for(large, 1), past);
        EXPECT_EQ(copy_for(large - 1, 1), move_bytes);
        EXPECT_EQ(copy_for(1024, large / 1024), past);
        EXPECT_EQ(copy_for(1023, large), move_bytes);
    });
}

TEST(Stream, DuplicatesOfLargeImages) {
    constexpr int32_t width = 2803, height = 2203;
    OwnedBlock photo = new_dib(width, height, 24, Content::zero);
    const LockedDib source(photo.get());
    Random random(2);
    const Rows rows = source.rows(RowStart::after_40);
    random.fill(rows[0], static_cast<size_t>(source.stride()) * height);
    for (const Rect rect : {Rect{0, 0, width, height}, Rect{3, 1, width - 4, height - 2}}) {
        OwnedBlock copy;
        ASSERT_EQ(duplicate(source, rect, copy), Status::ok);
        const LockedDib result(copy.get());
        const Rows to = result.rows(RowStart::after_40),
                   from = rows_of(source, rect, RowStart::after_40);
        for (int32_t row = 0; row < rect.height; ++row)
            ASSERT_TRUE(std::equal(to[row], to[row] + 3 * rect.width, from[row])) << row;
    }
}
