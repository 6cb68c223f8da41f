// Reversing and transposing kernels at every level of the processor, pixel by pixel.
#include "effects/turn_rows.hpp"

#include "internal/cpu_levels.hpp"
#include "internal/guarded.hpp"
#include "support/random.hpp"

#include <cstring>
#include <gtest/gtest.h>

using namespace kirvo;
using namespace kirvo_test;

TEST(TurnRows, exchange_runs_in_reverse_and_nothing_beside_them) {
    Random random(1);
    at_every_cpu_level([&](CpuLevel) {
        for (size_t bytes = 1; bytes <= 4; ++bytes)
            for (size_t count = 0; count < 100; ++count) {
                const size_t between = bytes * (count % 3); // pixels that stay
                const size_t size = 2 * bytes * count + between;
                Guarded row(size, count % 9);
                random.fill(row.data(), size);
                const std::vector<uint8_t> before = row.content();
                std::vector<uint8_t> expected = before;
                for (size_t i = 0; i < count; ++i) {
                    const size_t left = bytes * i, right = size - bytes * (i + 1);
                    std::memcpy(&expected[left], &before[right], bytes);
                    std::memcpy(&expected[right], &before[left], bytes);
                }
                turn_rows().exchange_reversed[bytes - 1](row.data(), row.data() + size, count);
                ASSERT_EQ(row.content(), expected) << bytes << " bytes, " << count;
                ASSERT_TRUE(row.intact());
            }
    });
}

namespace {

void check_transposition(size_t bytes, size_t columns, size_t rows, bool upward, bool backward,
                         Random& random) {
    const size_t from_step = bytes * columns + columns % 4, to_step = bytes * rows + rows % 3;
    const size_t from_size = from_step * (rows - 1) + bytes * columns;
    const size_t to_size = to_step * (columns - 1) + bytes * rows;
    Guarded from(from_size, rows % 5), to(to_size, columns % 5);
    random.fill(from.data(), from_size);
    random.fill(to.data(), to_size);
    std::vector<uint8_t> expected = to.content();
    const auto to_row = [&](size_t x) { return to_step * (upward ? columns - 1 - x : x); };
    const auto from_row = [&](size_t k) { return from_step * (backward ? rows - 1 - k : k); };
    for (size_t x = 0; x < columns; ++x)
        for (size_t k = 0; k < rows; ++k)
            std::memcpy(&expected[to_row(x) + bytes * k], from.data() + from_row(k) + bytes * x,
                        bytes);
    turn_rows().transpose[bytes - 1](
        to.data() + to_row(0), upward ? -ptrdiff_t(to_step) : ptrdiff_t(to_step),
        from.data() + from_row(0), backward ? -ptrdiff_t(from_step) : ptrdiff_t(from_step), columns,
        rows);
    ASSERT_EQ(to.content(), expected) << bytes << " bytes, " << columns << " x " << rows;
    ASSERT_TRUE(to.intact() && from.intact());
}

} // namespace

TEST(TurnRows, transpose_every_size_in_every_direction) {
    Random random(2);
    at_every_cpu_level([&](CpuLevel) {
        for (size_t bytes = 1; bytes <= 4; ++bytes)
            for (size_t columns = 1; columns < 36; ++columns)
                for (size_t rows = 1; rows < 36; rows += 1 + columns % 2)
                    ASSERT_NO_FATAL_FAILURE(check_transposition(
                        bytes, columns, rows, random.once_in(2), random.once_in(2), random));
    });
}
