// Each byte of the result from a pixel and its neighbours.
#include "kernels/cases.hpp"

#include <bit>
#include <cstdlib>

using namespace kirvo;

namespace kirvo_test {

namespace {

uint8_t clamped(int64_t value) { return static_cast<uint8_t>(std::clamp<int64_t>(value, 0, 255)); }

// Three rows with a margin of one pixel at both ends.
struct MarginedRows {
    const uint8_t* rows[3];

    MarginedRows(Trial& trial, size_t pixels, size_t pixel_bytes, int64_t least = 0) {
        for (const uint8_t*& row : rows)
            row = trial.values<uint8_t>(pixel_bytes * (pixels + 2), least, 255) + pixel_bytes;
    }
};

// The value `right` elements beside element i of a row: 0 below, 1 the row itself, 2 above.
int at(ThreeRows rows, int row, size_t i, ptrdiff_t right) {
    return rows[row][static_cast<ptrdiff_t>(i) + right];
}

int64_t weighted_sum(ThreeRows rows, size_t i, const Convolution& by) {
    int64_t sum = 0;
    for (int k = 0; k < 9; ++k)
        sum += int64_t{by.weight[k]} * at(rows, k / 3, i, 3 * (k % 3) - 3);
    return sum;
}

// For a divisor up to 2^bits, as the table's types state it.
void set_divisor(Convolution& by, uint64_t divisor, int bits) {
    const auto log = static_cast<int>(std::bit_width(divisor - 1));
    by.divides = divisor > 1;
    by.shift = bits + log;
    by.multiplier = static_cast<uint32_t>(((uint64_t{1} << by.shift) + divisor - 1) / divisor);
}

// The divisor that the multiplier was made from.
int64_t divisor_of(const Convolution& by) {
    const uint64_t power = uint64_t{1} << by.shift;
    return by.divides ? static_cast<int64_t>((power + by.multiplier - 1) / by.multiplier) : 1;
}

void convolve_plainly(uint8_t* to, ThreeRows rows, size_t bytes, const Convolution& by) {
    for (size_t i = 0; i < bytes; ++i)
        to[i] = clamped(weighted_sum(rows, i, by) / divisor_of(by));
}

constexpr uint64_t some_divisors[] = {1, 2, 3, 7, 9, 16, 20, 127, 128, 129, 1000, 32767, 32768};

uint64_t any_divisor(Random& random, int bits) {
    if (random.once_in(2))
        return random.pick(some_divisors);
    return 1 + (random.next64() >> (64 - random.between(1, bits)));
}

// Positive and negative weights of at most 128 each: no sum leaves 16 bits, and some reach the
// ends.
void set_narrow_weights(Convolution& by, Random& random) {
    int32_t above = 128, below = 128;
    for (int16_t& weight : by.weight) {
        const bool negative = random.once_in(3);
        int32_t& left = negative ? below : above;
        const int32_t size = random.once_in(3) ? left : random.between(0, left);
        left -= size;
        weight = static_cast<int16_t>(negative ? -size : size);
    }
    std::swap(by.weight[0], by.weight[random.between(0, 8)]);
}

void set_wide_weights(Convolution& by, Random& random) {
    const int32_t most = random.pick({1, 14, 200, 32767, 32767});
    for (int16_t& weight : by.weight)
        weight = static_cast<int16_t>(random.once_in(4) ? most : random.between(-most, most));
}

template<bool wide>
void convolve(Kernels::Convolve kernel, Trial& trial) {
    const MarginedRows from(trial, trial.count, 3);
    uint8_t* to = trial.room<uint8_t>(3 * trial.count);
    Convolution by = {};
    (wide ? set_wide_weights : set_narrow_weights)(by, trial.random);
    constexpr int bits = wide ? 31 : 15;
    set_divisor(by, trial.measures() ? 9 : any_divisor(trial.random, bits), bits);
    const Convolution& ready = trial.object(by);
    trial.run([=, &trial, &from, &ready] { kernel(to, from.rows, 3 * trial.count, ready); });
}

// Every sum of 16 bits, made of 128 times one neighbour and once another, divided.
void every_narrow_sum(Kernels::Convolve kernel, Trial& trial) {
    constexpr size_t sums = 32768, bytes = sums + 1; // whole pixels
    uint8_t* rows[3];
    for (uint8_t*& row : rows)
        row = trial.values<uint8_t>(bytes + 6) + 3;
    for (size_t i = 0; i < bytes; ++i) {
        (rows[0] + i)[-3] = static_cast<uint8_t>(i % sums / 128);
        (rows[2] + i)[3] = static_cast<uint8_t>(i % 128);
    }
    uint8_t* to = trial.room<uint8_t>(bytes);
    Convolution by = {};
    const bool negative = trial.round % 4 == 3;
    by.weight[0] = negative ? -128 : 128;
    by.weight[8] = negative ? -1 : 1;
    set_divisor(by,
                trial.round < std::size(some_divisors) ? some_divisors[trial.round]
                                                       : any_divisor(trial.random, 15),
                15);
    trial.run([=, &by] { kernel(to, {rows[0], rows[1], rows[2]}, bytes, by); });
}

template<typename Kernel>
void differentiate(Kernel kernel, Trial& trial) {
    const MarginedRows from(trial, trial.count, 1);
    auto* to = trial.room<int16_t>(trial.count);
    trial.run([=, &trial, &from] { kernel(to, from.rows, trial.count); });
}

// Differences as the kernels above make them, and any others.
const int16_t* differences(Trial& trial) {
    const bool usual = trial.between(0, 2, 0) != 0;
    return usual ? trial.values<int16_t>(trial.count, -1020, 1020)
                 : trial.values<int16_t>(trial.count);
}

// 65536 differences, one of each.
const int16_t* all_differences(Trial& trial) {
    auto* all = trial.values<int16_t>(65536);
    for (int i = 0; i < 65536; ++i)
        all[i] = static_cast<int16_t>(i - 32768);
    return all;
}

struct Limits {
    int16_t low, high;
};

// Above all those that the filters use.
Limits any_limits(Random& random) {
    static constexpr Limits usual[] = {{-255, 255}, {0, 255}, {-255, 0}, {0, 0}};
    if (random.once_in(2))
        return random.pick(usual);
    const auto low = static_cast<int16_t>(random.between(-255, 255));
    return {low, static_cast<int16_t>(random.between(low, 255))};
}

// Also limits that nothing can lie between.
Limits any_ends(Random& random) {
    static constexpr Limits extremes[] = {{INT16_MIN, 1020}, {0, INT16_MAX}, {5, -5}, {7, 7}};
    if (random.once_in(3))
        return random.pick(extremes);
    const auto end = [&] { return static_cast<int16_t>(random.between(-1020, 1020)); };
    const int16_t low = end();
    return {low, end()};
}

template<typename Kernel>
void mark(Kernel kernel, Trial& trial, const Limits& limits) {
    const int16_t* v = differences(trial);
    uint8_t* to = trial.room<uint8_t>(trial.count);
    trial.run([=, &trial] { kernel(to, v, trial.count, limits.low, limits.high); });
}

} // namespace

namespace cases {

const Case<decltype(Kernels::blur)> blur = {
    [](uint8_t* to, ThreeRows rows, size_t bytes) {
        constexpr int weights[3] = {11, 30, 81}; // by the number of steps that are 0
        for (size_t i = 0; i < bytes; ++i) {
            int sum = 0;
            for (int row = 0; row < 3; ++row)
                for (int column = 0; column < 3; ++column)
                    sum += weights[(row == 1) + (column == 1)] * at(rows, row, i, 3 * column - 3);
            to[i] = static_cast<uint8_t>(sum / 256);
        }
    },
    [](auto kernel, Trial& trial) {
        const MarginedRows from(trial, trial.count, 3);
        uint8_t* to = trial.room<uint8_t>(3 * trial.count);
        trial.run([=, &trial, &from] { kernel(to, from.rows, 3 * trial.count); });
    },
    "pixel", 4093,
    // White gives the largest sum; then all that are nearly white.
    [](auto kernel, Trial& trial) {
        constexpr size_t pixels = 100;
        const MarginedRows from(trial, pixels, 3, 255 - static_cast<int64_t>(trial.round));
        uint8_t* to = trial.room<uint8_t>(3 * pixels);
        trial.run([=, &from] { kernel(to, from.rows, 3 * pixels); });
    },
    20};

const Case<Kernels::Convolve> convolve16 = {
    convolve_plainly, convolve<false>, "pixel", 4093, every_narrow_sum, 40};
const Case<Kernels::Convolve> convolve32 = {convolve_plainly, convolve<true>, "pixel"};

const Case<decltype(Kernels::laplacian)> laplacian = {
    [](int16_t* to, ThreeRows rows, size_t count) {
        for (size_t i = 0; i < count; ++i)
            to[i] = static_cast<int16_t>(4 * at(rows, 1, i, 0) - at(rows, 1, i, -1) -
                                         at(rows, 1, i, 1) - at(rows, 0, i, 0) - at(rows, 2, i, 0));
    },
    differentiate<decltype(Kernels::laplacian)>, "pixel"};

const Case<decltype(Kernels::gradient)> gradient = {
    [](int16_t* to, ThreeRows rows, size_t count) {
        for (size_t i = 0; i < count; ++i) {
            const int straight =
                at(rows, 1, i, 1) + at(rows, 2, i, 0) - at(rows, 0, i, 0) - at(rows, 1, i, -1);
            const int across = at(rows, 2, i, 1) - at(rows, 0, i, -1);
            to[i] = static_cast<int16_t>(straight + 2 * across);
        }
    },
    differentiate<decltype(Kernels::gradient)>, "pixel"};

const Case<decltype(Kernels::correction)> correction = {
    [](uint8_t* plus, uint8_t* minus, const int16_t* laplacian, size_t count, int divisor) {
        for (size_t i = 0; i < count; ++i) {
            plus[i] = clamped(laplacian[i] / divisor);
            minus[i] = clamped(-(laplacian[i] / divisor));
        }
    },
    [](auto kernel, Trial& trial) {
        const int16_t* laplacian = trial.values<int16_t>(trial.count, -1020, 1020);
        uint8_t* plus = trial.room<uint8_t>(trial.count);
        uint8_t* minus = trial.room<uint8_t>(trial.count);
        const int divisor = 2 * trial.between(1, 4, 2);
        trial.run([=, &trial] { kernel(plus, minus, laplacian, trial.count, divisor); });
    },
    "pixel", 4093,
    // Every Laplacian over every divisor.
    [](auto kernel, Trial& trial) {
        constexpr size_t count = 2041;
        auto* laplacian = trial.values<int16_t>(count);
        for (size_t i = 0; i < count; ++i)
            laplacian[i] = static_cast<int16_t>(static_cast<int>(i) - 1020);
        uint8_t* plus = trial.room<uint8_t>(count);
        uint8_t* minus = trial.room<uint8_t>(count);
        const int divisor = 2 + 2 * static_cast<int>(trial.round);
        trial.run([=] { kernel(plus, minus, laplacian, count, divisor); });
    },
    4};

const Case<decltype(Kernels::dark_edges)> dark_edges = {
    [](uint8_t* to, const int16_t* v, size_t count, int16_t low, int16_t high) {
        for (size_t i = 0; i < count; ++i)
            to[i] = static_cast<uint8_t>(255 - std::abs(std::clamp(v[i], low, high)));
    },
    [](auto kernel, Trial& trial) { mark(kernel, trial, any_limits(trial.random)); },
    "pixel",
    4093,
    [](auto kernel, Trial& trial) {
        const int16_t* v = all_differences(trial);
        uint8_t* to = trial.room<uint8_t>(65536);
        const Limits limits = any_limits(trial.random);
        trial.run([=] { kernel(to, v, 65536, limits.low, limits.high); });
    },
    20};

const Case<decltype(Kernels::relief)> relief = {
    [](uint8_t* to, const int16_t* v, size_t count) {
        for (size_t i = 0; i < count; ++i)
            to[i] = static_cast<uint8_t>(std::clamp<int>(v[i], -127, 127) + 128);
    },
    [](auto kernel, Trial& trial) {
        const int16_t* v = differences(trial);
        uint8_t* to = trial.room<uint8_t>(trial.count);
        trial.run([=, &trial] { kernel(to, v, trial.count); });
    },
    "pixel",
    4093,
    [](auto kernel, Trial& trial) {
        const int16_t* v = all_differences(trial);
        uint8_t* to = trial.room<uint8_t>(65536);
        trial.run([=] { kernel(to, v, 65536); });
    },
    1};

const Case<decltype(Kernels::between)> between = {
    [](uint8_t* to, const int16_t* v, size_t count, int16_t low, int16_t high) {
        for (size_t i = 0; i < count; ++i)
            to[i] = v[i] < low || v[i] > high ? 0 : 255;
    },
    [](auto kernel, Trial& trial) { mark(kernel, trial, any_ends(trial.random)); }, "pixel"};

} // namespace cases

} // namespace kirvo_test
