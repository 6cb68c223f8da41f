// Rows of bytes.
#include "kernels/cases.hpp"

#include <algorithm>
#include <cstring>

using namespace kirvo;

namespace kirvo_test {

namespace {

using Blend = Kernels::WithPattern;

// The first 256 rounds hold every pair of bytes.
void every_pair(Blend kernel, Trial& trial) {
    uint8_t* to = trial.values<uint8_t>(256);
    uint8_t* from = trial.values<uint8_t>(256, trial.round, trial.round);
    for (int i = 0; i < 256; ++i)
        to[i] = static_cast<uint8_t>(i);
    trial.run([=] { kernel(to, from, 256, ~0u); });
}

constexpr Case<Blend> blend(Blend oracle) {
    return {oracle,
            [](Blend kernel, Trial& trial) {
                uint8_t* to = trial.values<uint8_t>(trial.count);
                const uint8_t* from = trial.values<uint8_t>(trial.count);
                const uint32_t kept = trial.random.next();
                trial.run([=, &trial] { kernel(to, from, trial.count, kept); });
            },
            "byte",
            4093,
            every_pair,
            256};
}

constexpr int32_t offsets[] = {-255, -254, -128, -1, 0, 1, 77, 128, 255};

} // namespace

namespace cases {

const Case<Blend> add = blend([](uint8_t* to, const uint8_t* from, size_t bytes, uint32_t kept) {
    for (size_t i = 0; i < bytes; ++i)
        to[i] = static_cast<uint8_t>(std::min(to[i] + from[i], 255) & kept >> i % 4 * 8);
});
const Case<Blend> average =
    blend([](uint8_t* to, const uint8_t* from, size_t bytes, uint32_t kept) {
        for (size_t i = 0; i < bytes; ++i)
            to[i] = static_cast<uint8_t>(((to[i] + from[i]) / 2) & kept >> i % 4 * 8);
    });
const Case<Blend> subtract =
    blend([](uint8_t* to, const uint8_t* from, size_t bytes, uint32_t kept) {
        for (size_t i = 0; i < bytes; ++i)
            to[i] = static_cast<uint8_t>(std::max(to[i] - from[i], 0) & kept >> i % 4 * 8);
    });

const Case<decltype(Kernels::scale)> scale = {
    [](uint8_t* to, const uint8_t* from, size_t bytes, int32_t factor, int32_t offset) {
        for (size_t i = 0; i < bytes; ++i)
            to[i] = static_cast<uint8_t>(std::clamp(from[i] * factor / 100 + offset, 0, 255));
    },
    [](auto kernel, Trial& trial) {
        const Trial::Rows row = trial.rows(trial.count);
        const int32_t factor = trial.between(0, 200, 150), offset = trial.between(-255, 255, -60);
        trial.run([=, &trial] { kernel(row.to, row.from, trial.count, factor, offset); });
    },
    "byte", 4093,
    // Every byte by every factor.
    [](auto kernel, Trial& trial) {
        uint8_t* from = trial.values<uint8_t>(256);
        for (int i = 0; i < 256; ++i)
            from[i] = static_cast<uint8_t>(i);
        uint8_t* to = trial.room<uint8_t>(256);
        const auto factor = static_cast<int32_t>(trial.round / std::size(offsets));
        const int32_t offset = offsets[trial.round % std::size(offsets)];
        trial.run([=] { kernel(to, from, 256, factor, offset); });
    },
    201 * std::size(offsets)};

const Case<decltype(Kernels::map)> map = {
    [](uint8_t* to, const uint8_t* from, size_t bytes, const Levels& levels) {
        std::transform(from, from + bytes, to, [&](uint8_t byte) { return levels.level[byte]; });
    },
    [](auto kernel, Trial& trial) {
        const Trial::Rows row = trial.rows(trial.count);
        const Levels& levels = *trial.objects<Levels>(1);
        trial.run([=, &trial, &levels] { kernel(row.to, row.from, trial.count, levels); });
    },
    "byte"};

const Case<decltype(Kernels::invert)> invert = {
    [](uint8_t* to, const uint8_t* from, size_t bytes, uint32_t pattern) {
        for (size_t i = 0; i < bytes; ++i)
            to[i] = static_cast<uint8_t>(from[i] ^ pattern >> i % 4 * 8);
    },
    [](auto kernel, Trial& trial) {
        const Trial::Rows row = trial.rows(trial.count);
        const uint32_t pattern = trial.random.next();
        trial.run([=, &trial] { kernel(row.to, row.from, trial.count, pattern); });
    },
    "byte"};

const Case<decltype(Kernels::keep_bits)> keep_bits = {
    [](uint8_t* to, const uint8_t* from, size_t bytes, uint32_t pattern) {
        for (size_t i = 0; i < bytes; ++i)
            to[i] = static_cast<uint8_t>(from[i] & pattern >> i % 4 * 8);
    },
    [](auto kernel, Trial& trial) {
        const Trial::Rows row = trial.rows(trial.count);
        const uint32_t pattern = trial.random.next();
        trial.run([=, &trial] { kernel(row.to, row.from, trial.count, pattern); });
    },
    "byte"};

const Case<decltype(Kernels::correct)> correct = {
    [](uint8_t* to, const uint8_t* from, const uint8_t* plus, const uint8_t* minus, size_t bytes) {
        for (size_t i = 0; i < bytes; ++i)
            to[i] = static_cast<uint8_t>(std::clamp(from[i] + plus[i] - minus[i], 0, 255));
    },
    [](auto kernel, Trial& trial) {
        uint8_t* to = trial.room<uint8_t>(trial.count);
        const uint8_t* from = trial.values<uint8_t>(trial.count);
        uint8_t* plus = trial.values<uint8_t>(trial.count);
        uint8_t* minus = trial.values<uint8_t>(trial.count);
        for (size_t i = 0; i < trial.count; ++i)
            (trial.random.once_in(2) ? plus : minus)[i] = 0;
        trial.run([=, &trial] { kernel(to, from, plus, minus, trial.count); });
    },
    "byte"};

const Case<decltype(Kernels::triple)> triple = {
    [](uint8_t* to, const uint8_t* from, size_t count) {
        for (size_t i = 0; i < 3 * count; ++i)
            to[i] = from[i / 3];
    },
    [](auto kernel, Trial& trial) {
        uint8_t* to = trial.room<uint8_t>(3 * trial.count);
        const uint8_t* from = trial.values<uint8_t>(trial.count);
        trial.run([=, &trial] { kernel(to, from, trial.count); });
    },
    "byte"};

const Case<decltype(Kernels::copy_past_caches)> copy_past_caches = {
    [](uint8_t* to, const uint8_t* from, size_t bytes) { std::copy(from, from + bytes, to); },
    [](auto kernel, Trial& trial) {
        uint8_t* to = trial.room<uint8_t>(trial.count);
        const uint8_t* from = trial.values<uint8_t>(trial.count);
        trial.run([=, &trial] { kernel(to, from, trial.count); });
    },
    "byte"};

} // namespace cases

} // namespace kirvo_test
