// Pixels of 1 to 4 bytes in another arrangement.
#include "kernels/cases.hpp"

#include <cstring>

using namespace kirvo;

namespace kirvo_test {

namespace {

template<size_t bytes>
constexpr Case<Kernels::Gather> gather_case = {
    [](uint8_t* to, const uint8_t* from, const uint32_t* offsets, size_t pixels) {
        for (size_t i = 0; i < bytes * pixels; ++i)
            to[i] = from[offsets[i / bytes] + i % bytes];
    },
    // Rising places as zooms have them, or any.
    [](Kernels::Gather kernel, Trial& trial) {
        const auto places = static_cast<size_t>(trial.between(1, 300, 4096));
        const bool rising = trial.between(0, 1, 1) == 1;
        const uint8_t* from = trial.values<uint8_t>(1 + bytes * places) + 1;
        uint8_t* to = trial.room<uint8_t>(bytes * trial.count);
        auto* offsets = trial.values<uint32_t>(trial.count, 0, 0);
        for (size_t i = 0; i < trial.count; ++i)
            offsets[i] = static_cast<uint32_t>(
                bytes * (rising ? i * places / trial.count : trial.random.next() % places));
        trial.run([=, &trial] { kernel(to, from, offsets, trial.count); });
    },
    "pixel"};

template<size_t bytes>
constexpr Case<Kernels::Exchange> exchange_case = {
    [](uint8_t* left, uint8_t* right_end, size_t pixels) {
        for (size_t i = 0; i < pixels; ++i)
            for (size_t b = 0; b < bytes; ++b)
                std::swap(
                    left[bytes * i + b],
                    right_end[static_cast<ptrdiff_t>(b) - static_cast<ptrdiff_t>(bytes * (i + 1))]);
    },
    // With none, one or two pixels between the runs.
    [](Kernels::Exchange kernel, Trial& trial) {
        const size_t all = 2 * trial.count + static_cast<size_t>(trial.between(0, 2, 0));
        uint8_t* row = trial.values<uint8_t>(bytes * all);
        trial.items = 2 * trial.count;
        trial.run([=, &trial] { kernel(row, row + bytes * all, trial.count); });
    },
    "pixel"};

template<size_t bytes>
void transpose_plainly(uint8_t* to, ptrdiff_t to_step, const uint8_t* from, ptrdiff_t from_step,
                       size_t columns, size_t rows) {
    for (size_t x = 0; x < columns; ++x)
        for (size_t k = 0; k < rows; ++k)
            std::memcpy(to + static_cast<ptrdiff_t>(x) * to_step + bytes * k,
                        from + static_cast<ptrdiff_t>(k) * from_step + bytes * x, bytes);
}

// Rows that lie apart by any padding, upward or downward.
struct Plane {
    uint8_t* first;
    ptrdiff_t step;

    Plane(Trial& trial, size_t row_bytes, size_t rows) {
        const size_t distance = row_bytes + static_cast<size_t>(trial.between(0, 9, 0));
        const size_t last = rows == 0 ? 0 : distance * (rows - 1);
        first = trial.values<uint8_t>(rows == 0 ? 0 : last + row_bytes);
        step = static_cast<ptrdiff_t>(distance);
        if (trial.between(0, 1, 0) == 1) {
            first += last;
            step = -step;
        }
    }
};

template<size_t bytes>
constexpr Case<Kernels::Transpose> transpose_case = {
    transpose_plainly<bytes>,
    [](Kernels::Transpose kernel, Trial& trial) {
        const size_t columns = trial.count;
        const auto rows = static_cast<size_t>(trial.between(0, 70, 64));
        const Plane from(trial, bytes * columns, rows), to(trial, bytes * rows, columns);
        trial.items = columns * rows;
        trial.run([=] { kernel(to.first, to.step, from.first, from.step, columns, rows); });
    },
    "pixel", 257,
    // Every size up to 40 by 40.
    [](Kernels::Transpose kernel, Trial& trial) {
        const size_t columns = trial.round % 40 + 1, rows = trial.round / 40 + 1;
        const Plane from(trial, bytes * columns, rows), to(trial, bytes * rows, columns);
        trial.run([=] { kernel(to.first, to.step, from.first, from.step, columns, rows); });
    },
    40 * 40};

} // namespace

namespace cases {

const Case<Kernels::Gather> gather[4] = {gather_case<1>, gather_case<2>, gather_case<3>,
                                         gather_case<4>};
const Case<Kernels::Exchange> exchange_reversed[4] = {exchange_case<1>, exchange_case<2>,
                                                      exchange_case<3>, exchange_case<4>};
const Case<Kernels::Transpose> transpose[4] = {transpose_case<1>, transpose_case<2>,
                                               transpose_case<3>, transpose_case<4>};

} // namespace cases

} // namespace kirvo_test
