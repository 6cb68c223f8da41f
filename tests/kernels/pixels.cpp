// Rows of 24-bit pixels, without their hues.
#include "kernels/cases.hpp"
#include "kernels/each_pixel.hpp"

#include <cstring>

using namespace kirvo;

namespace kirvo_test {

namespace {

// In doubles, of which the sums need no rounding.
uint8_t luminance_of(const uint8_t* bgr) {
    return static_cast<uint8_t>((77.0 * bgr[2] + 150.0 * bgr[1] + 29.0 * bgr[0] + 128.0) / 256.0);
}

// 256 rounds of all pixels with one value of red.
uint8_t* pixels_of_a_red(Trial& trial) {
    uint8_t* pixels = trial.values<uint8_t>(3 * 65536);
    for (size_t i = 0; i < 65536; ++i) {
        pixels[3 * i] = static_cast<uint8_t>(i);
        pixels[3 * i + 1] = static_cast<uint8_t>(i >> 8);
        pixels[3 * i + 2] = static_cast<uint8_t>(trial.round * 5);
    }
    return pixels;
}

ChannelOrder order_of(size_t number) {
    return {{static_cast<uint8_t>(number % 3), static_cast<uint8_t>(number / 3 % 3),
             static_cast<uint8_t>(number / 9 % 3)}};
}

void permute_row(decltype(Kernels::permute) kernel, Trial& trial, size_t pixels, size_t number) {
    const Trial::Rows row = trial.rows(3 * pixels);
    const ChannelOrder& order = trial.object(order_of(number));
    trial.run([=, &order] { kernel(row.to, row.from, pixels, order); });
}

using Counters = uint32_t[256];

void count_plainly(Counters* counts, const uint8_t* bgr, const uint8_t*) {
    for (size_t i = 0; i < 3 * tally_pixels; ++i)
        ++counts[i % 3][bgr[i]];
}

} // namespace

namespace cases {

const Case<decltype(Kernels::map_channels)> map_channels = {
    [](uint8_t* to, const uint8_t* from, size_t pixels, const ChannelLevels& levels) {
        for (size_t i = 0; i < 3 * pixels; ++i)
            to[i] = levels.channel[i % 3].level[from[i]];
    },
    [](auto kernel, Trial& trial) {
        const Trial::Rows row = trial.rows(3 * trial.count);
        const ChannelLevels& levels = *trial.objects<ChannelLevels>(1);
        trial.run([=, &trial, &levels] { kernel(row.to, row.from, trial.count, levels); });
    },
    "pixel"};

const Case<decltype(Kernels::permute)> permute = {
    [](uint8_t* to, const uint8_t* from, size_t pixels, const ChannelOrder& order) {
        each_pixel(to, from, pixels, [&](uint8_t* pixel) {
            const uint8_t old[] = {pixel[0], pixel[1], pixel[2]};
            for (int c = 0; c < 3; ++c)
                pixel[c] = old[order.from[c]];
        });
    },
    [](auto kernel, Trial& trial) {
        const auto number = static_cast<size_t>(trial.between(0, 26, 5));
        permute_row(kernel, trial, trial.count, number);
    },
    "pixel", 4093,
    // Every order, every count of a few steps.
    [](auto kernel, Trial& trial) {
        permute_row(kernel, trial, 131 + trial.round / 27, trial.round % 27);
    },
    27 * 16};

const Case<decltype(Kernels::grey)> grey = {
    [](uint8_t* to, const uint8_t* from, size_t pixels) {
        each_pixel(to, from, pixels,
                   [](uint8_t* pixel) { pixel[0] = pixel[1] = pixel[2] = luminance_of(pixel); });
    },
    [](auto kernel, Trial& trial) {
        const Trial::Rows row = trial.rows(3 * trial.count);
        trial.run([=, &trial] { kernel(row.to, row.from, trial.count); });
    },
    "pixel",
    4093,
    [](auto kernel, Trial& trial) {
        const uint8_t* from = pixels_of_a_red(trial);
        uint8_t* to = trial.room<uint8_t>(3 * 65536);
        trial.run([=] { kernel(to, from, 65536); });
    },
    52};

const Case<decltype(Kernels::luminance)> luminance = {
    [](uint8_t* to, const uint8_t* bgr, size_t pixels) {
        for (size_t i = 0; i < pixels; ++i)
            to[i] = luminance_of(bgr + 3 * i);
    },
    [](auto kernel, Trial& trial) {
        uint8_t* to = trial.room<uint8_t>(trial.count);
        const uint8_t* from = trial.values<uint8_t>(3 * trial.count);
        trial.run([=, &trial] { kernel(to, from, trial.count); });
    },
    "pixel",
    4093,
    [](auto kernel, Trial& trial) {
        const uint8_t* from = pixels_of_a_red(trial);
        uint8_t* to = trial.room<uint8_t>(65536);
        trial.run([=] { kernel(to, from, 65536); });
    },
    52};

// Levels that have none count as the oracle does.
const Case<decltype(Kernels::tally)> tally = {
    count_plainly,
    [](auto kernel, Trial& trial) {
        auto* counts = reinterpret_cast<Counters*>(trial.values<uint32_t>(3 * 256));
        const uint8_t* bgr = trial.values<uint8_t>(3 * tally_pixels);
        trial.items = tally_pixels;
        trial.run([=] { (kernel == nullptr ? count_plainly : kernel)(counts, bgr, nullptr); });
    },
    "pixel", 16,
    // One value alone in each round.
    [](auto kernel, Trial& trial) {
        auto* counts = reinterpret_cast<Counters*>(trial.values<uint32_t>(3 * 256, 0, 0));
        const auto value = static_cast<int64_t>(trial.round);
        const uint8_t* bgr = trial.values<uint8_t>(3 * tally_pixels, value, value);
        trial.run([=] { (kernel == nullptr ? count_plainly : kernel)(counts, bgr, bgr); });
    },
    256};

const Case<decltype(Kernels::replace)> replace = {
    [](uint8_t* to, const uint8_t* from, size_t pixels, const uint8_t* key) {
        for (size_t i = 0; i < 3 * pixels; i += 3) {
            if (std::memcmp(from + i, key, 3) != 0)
                std::memcpy(to + i, from + i, 3);
        }
    },
    // Channels take few values, so that many bytes match the key and few whole pixels do.
    [](auto kernel, Trial& trial) {
        uint8_t* to = trial.values<uint8_t>(3 * trial.count);
        const uint8_t* from = trial.values<uint8_t>(3 * trial.count, 0, trial.random.between(0, 2));
        const uint8_t* key = trial.values<uint8_t>(3, 0, 2);
        trial.run([=, &trial] { kernel(to, from, trial.count, key); });
    },
    "pixel"};

} // namespace cases

} // namespace kirvo_test
