// Sums of rows and means of boxes.
#include "kernels/cases.hpp"

#include <bit>

using namespace kirvo;

namespace kirvo_test {

namespace {

template<typename T>
constexpr Case<void (*)(T* sums, const uint8_t* row, size_t count)> add_to_sums = {
    [](T* sums, const uint8_t* row, size_t count) {
        constexpr uint64_t wraps_at = uint64_t{1} << 8 * sizeof(T);
        for (size_t i = 0; i < count; ++i)
            sums[i] = static_cast<T>((uint64_t{sums[i]} + row[i]) % wraps_at);
    },
    [](void (*kernel)(T* sums, const uint8_t* row, size_t count), Trial& trial) {
        T* sums = trial.values<T>(trial.count);
        const uint8_t* row = trial.values<uint8_t>(trial.count);
        trial.run([=, &trial] { kernel(sums, row, trial.count); });
    },
    "byte"};

// Exact in doubles: a sum below 2^16 over a power of two.
template<size_t columns, size_t bytes>
void average_plainly(uint8_t* to, const uint8_t* from, ptrdiff_t row_step, size_t rows,
                     size_t count, int shift) {
    for (size_t i = 0; i < bytes * count; ++i) {
        double sum = 0;
        for (size_t k = 0; k < rows; ++k)
            for (size_t x = 0; x < columns; ++x)
                sum += from[static_cast<ptrdiff_t>(k) * row_step +
                            static_cast<ptrdiff_t>(bytes * (i / bytes * columns + x) + i % bytes)];
        to[i] = static_cast<uint8_t>(sum / static_cast<double>(1 << shift));
    }
}

// Boxes of 2^shift pixels at most 256, and others whose mean is still a byte. Steps go up or down.
template<size_t columns, size_t bytes>
void take_means(Kernels::Means kernel, Trial& trial) {
    const size_t height_limit = 256 / columns;
    const auto height_log = trial.between(0, std::countr_zero(height_limit), columns == 2 ? 1 : 2);
    size_t rows = size_t{1} << height_log;
    if (rows > 2 && trial.between(0, 5, 1) == 0)
        rows -= 1;
    const int shift = std::countr_zero(columns) + height_log;
    const size_t width = bytes * columns * trial.count;
    const size_t step = width + static_cast<size_t>(trial.between(0, 3, 0));
    const bool upward = trial.between(0, 1, 1) == 0;
    uint8_t* to = trial.room<uint8_t>(bytes * trial.count);
    const uint8_t* from = trial.values<uint8_t>(step * (rows - 1) + width);
    const auto signed_step = static_cast<ptrdiff_t>(step);
    trial.items = trial.count * rows * columns;
    trial.run([=, &trial] {
        kernel(to, upward ? from + step * (rows - 1) : from, upward ? -signed_step : signed_step,
               rows, trial.count, shift);
    });
}

} // namespace

namespace cases {

const Case<decltype(Kernels::add_to_sums16)> add_to_sums16 = add_to_sums<uint16_t>;
const Case<decltype(Kernels::add_to_sums32)> add_to_sums32 = add_to_sums<uint32_t>;
const Case<Kernels::Means> means_of_2 = {average_plainly<2, 3>, take_means<2, 3>, "pixel", 1000};
const Case<Kernels::Means> means_of_4 = {average_plainly<4, 3>, take_means<4, 3>, "pixel", 1000};
const Case<Kernels::Means> wide_means_of_2 = {average_plainly<2, 4>, take_means<2, 4>, "pixel",
                                              1000};

} // namespace cases

} // namespace kirvo_test
