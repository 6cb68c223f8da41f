// Pixels to samples, samples to quantised coefficients.
#include "jpeg/encode/quantiser.hpp"
#include "kernels/cases.hpp"
#include "kernels/zigzag.hpp"

#include <cmath>
#include <cstdlib>
#include <cstring>

using namespace kirvo;

namespace kirvo_test {

namespace {

constexpr size_t rounded_up(size_t count) { return (count + 63) / 64 * 64; }

double floor_of(double numerator, double divisor) { return std::floor(numerator / divisor); }

struct Planes {
    int8_t *y, *cb, *cr;

    Planes(Trial& trial, size_t pixels)
        : y(trial.room<int8_t>(pixels)), cb(trial.room<int8_t>(pixels)),
          cr(trial.room<int8_t>(pixels)) {}
};

// The factor of input x in output u: cos(k pi / 16) in units of 1 / 32767, rounded down.
int64_t factor(int u, int x) {
    const double pi = std::acos(-1.0);
    const double cosine = u == 0 ? std::cos(pi / 4) : std::cos((2 * x + 1) * u * pi / 16);
    return static_cast<int64_t>(cosine * 32767 + (cosine < 0 ? -1e-6 : 1e-6));
}

// Rows, then columns, each output as one sum of products.
void forward_dct(const int8_t* samples, ptrdiff_t stride, int64_t (&out)[8][8]) {
    static const auto factors = [] {
        std::array<std::array<int64_t, 8>, 8> table;
        for (int u = 0; u < 8; ++u)
            for (int x = 0; x < 8; ++x)
                table[static_cast<size_t>(u)][static_cast<size_t>(x)] = factor(u, x);
        return table;
    }();
    int64_t rows[8][8];
    for (int y = 0; y < 8; ++y)
        for (size_t u = 0; u < 8; ++u) {
            int64_t sum = 0;
            for (size_t x = 0; x < 8; ++x)
                sum += factors[u][x] * samples[y * stride + static_cast<ptrdiff_t>(x)];
            rows[y][u] = sum >> 13;
        }
    for (size_t v = 0; v < 8; ++v)
        for (size_t u = 0; u < 8; ++u) {
            int64_t sum = 1 << 18;
            for (size_t y = 0; y < 8; ++y)
                sum += factors[v][y] * rows[y][u];
            out[v][u] = sum >> 19;
        }
}

// Half away from zero; 0 for a coefficient that is not coded.
int64_t quantised(int64_t coefficient, int divisor) {
    if (divisor == 0)
        return 0;
    const int64_t quotient = (std::abs(coefficient) + divisor / 2) / divisor;
    return coefficient < 0 ? -quotient : quotient;
}

void code_block(const int8_t* samples, ptrdiff_t stride, const Quantiser& quantiser,
                BlockGroup& group, size_t block) {
    int64_t coefficients[8][8];
    forward_dct(samples, stride, coefficients);
    group.nonzero[block] = 0;
    for (size_t k = 0; k < 64; ++k) {
        const size_t row = zigzag[k] / 8, column = zigzag[k] % 8;
        const int64_t level = quantised(coefficients[row][column], quantiser.divisor[zigzag[k]]);
        group.level[row][8 * block + column] = static_cast<int16_t>(level);
        const bool is_small = level >= -small_levels && level < small_levels;
        group.small[block][k] = static_cast<uint8_t>(is_small ? level + small_levels : 255);
        group.nonzero[block] |= uint64_t{level != 0} << k;
    }
}

// The bytes of `small` that mean something get one form: none for a level of 0, and one value for
// all levels that are not small.
void settle_small_levels(BlockGroup& group) {
    for (size_t block = 0; block < blocks_abreast; ++block) {
        for (size_t k = 0; k < 64; ++k) {
            uint8_t& small = group.small[block][k];
            if (!(group.nonzero[block] >> k & 1))
                small = 0;
            else if (small >= 2 * small_levels)
                small = 255;
        }
    }
}

int8_t* any_samples(Trial& trial, size_t count) {
    int8_t* samples = trial.values<int8_t>(count);
    const int32_t kind = trial.between(0, 3, 3);
    if (kind == 0) // extremes in stripes and squares
        for (size_t i = 0; i < count; ++i)
            samples[i] = (i / static_cast<size_t>(trial.random.between(1, 3)) + i / 64) % 2
                             ? INT8_MIN
                             : INT8_MAX;
    if (kind == 1)
        for (size_t i = 0; i < count; ++i)
            samples[i] = static_cast<int8_t>(trial.random.between(-3, 3));
    return samples;
}

Quantiser make_quantiser(const uint8_t* table, int32_t count) {
    Quantiser quantiser;
    set_quantiser(quantiser, table, count);
    return quantiser;
}

Quantiser any_quantiser(Random& random) {
    uint8_t table[64];
    const int32_t highest = random.pick({1, 2, 3, 4, 30, 255});
    for (uint8_t& entry : table)
        entry = static_cast<uint8_t>(random.between(1, highest));
    return make_quantiser(table, random.pick({1, 21, 63, 64, 64, 64}));
}

void code(decltype(Kernels::code_groups) kernel, Trial& trial, size_t groups,
          const Quantiser& value) {
    const size_t width = 8 * blocks_abreast * groups;
    const ptrdiff_t stride = static_cast<ptrdiff_t>(width) + trial.between(0, 9, 0);
    const int8_t* samples =
        any_samples(trial, groups == 0 ? 0 : static_cast<size_t>(7 * stride) + width);
    const Quantiser& quantiser = trial.object(value);
    auto* out = trial.objects<BlockGroup>(groups);
    trial.run([=, &quantiser] { kernel(samples, stride, groups, quantiser, out); });
    std::for_each(out, out + groups, settle_small_levels);
}

} // namespace

namespace cases {

const Case<decltype(Kernels::samples_of)> samples_of = {
    [](const uint8_t* bgr, size_t pixels, int8_t* y, int8_t* cb, int8_t* cr) {
        for (size_t i = 0; i < pixels; ++i) {
            const double b = bgr[3 * i], g = bgr[3 * i + 1], r = bgr[3 * i + 2];
            y[i] = static_cast<int8_t>(floor_of(77 * r + 150 * g + 29 * b + 128, 256) - 128);
            cb[i] = static_cast<int8_t>(floor_of(128 * b - 85 * g - 43 * r + 127, 256));
            cr[i] = static_cast<int8_t>(floor_of(128 * r - 107 * g - 21 * b + 127, 256));
        }
    },
    [](auto kernel, Trial& trial) {
        const uint8_t* bgr = trial.values<uint8_t>(3 * trial.count);
        const Planes to(trial, trial.count);
        trial.run([=, &trial] { kernel(bgr, trial.count, to.y, to.cb, to.cr); });
    },
    "pixel", 4093,
    // All pixels of some reds.
    [](auto kernel, Trial& trial) {
        constexpr size_t pixels = 65536;
        uint8_t* bgr = trial.values<uint8_t>(3 * pixels);
        for (size_t i = 0; i < pixels; ++i) {
            bgr[3 * i] = static_cast<uint8_t>(i);
            bgr[3 * i + 1] = static_cast<uint8_t>(i >> 8);
            bgr[3 * i + 2] = static_cast<uint8_t>(trial.round * 15);
        }
        const Planes to(trial, pixels);
        trial.run([=] { kernel(bgr, pixels, to.y, to.cb, to.cr); });
    },
    18};

const Case<decltype(Kernels::halve)> halve = {
    [](const int8_t* upper, const int8_t* lower, size_t count, int8_t* half) {
        for (size_t i = 0; i < count; ++i) {
            const int sum = upper[2 * i] + upper[2 * i + 1] + lower[2 * i] + lower[2 * i + 1];
            half[i] = static_cast<int8_t>(floor_of(sum + 2, 4));
        }
    },
    [](auto kernel, Trial& trial) {
        const int8_t* upper = trial.values<int8_t>(2 * rounded_up(trial.count));
        const int8_t* lower = trial.values<int8_t>(2 * rounded_up(trial.count));
        auto* half = trial.room<int8_t>(trial.count, rounded_up(trial.count));
        trial.run([=, &trial] { kernel(upper, lower, trial.count, half); });
    },
    "result", 4093,
    // Every pair, twice.
    [](auto kernel, Trial& trial) {
        constexpr size_t pairs = 65536;
        auto* row = trial.values<int8_t>(2 * pairs);
        for (size_t i = 0; i < pairs; ++i) {
            row[2 * i] = static_cast<int8_t>(i);
            row[2 * i + 1] = static_cast<int8_t>(i >> 8);
        }
        auto* half = trial.room<int8_t>(pairs);
        trial.run([=] { kernel(row, row, pairs, half); });
    },
    1};

const Case<decltype(Kernels::code_groups)> code_groups = {
    [](const int8_t* samples, ptrdiff_t stride, size_t groups, const Quantiser& quantiser,
       BlockGroup* out) {
        for (size_t block = 0; block < groups * blocks_abreast; ++block)
            code_block(samples + 8 * block, stride, quantiser, out[block / blocks_abreast],
                       block % blocks_abreast);
    },
    [](auto kernel, Trial& trial) {
        code(kernel, trial, trial.count, any_quantiser(trial.random));
    },
    "group", 100,
    // Every divisor, on samples of one extreme and on any.
    [](auto kernel, Trial& trial) {
        uint8_t table[64];
        std::fill_n(table, 64, static_cast<uint8_t>(trial.round / 4 + 1));
        code(kernel, trial, 1 + trial.round % 4, make_quantiser(table, 64));
    },
    4 * 255};

} // namespace cases

} // namespace kirvo_test
