// The rows of the point operations at every level of the processor, against one byte at a time.

#include "effects/tone_rows.hpp"

#include "internal/cpu_levels.hpp"
#include "internal/guarded.hpp"
#include "support/random.hpp"

#include <algorithm>

using namespace kirvo;
using namespace kirvo_test;

namespace {

Levels random_levels(Random& random) {
    Levels levels;
    random.fill(levels.level, sizeof levels.level);
    return levels;
}

// Runs a row out of place and in place, at many counts and alignments of pixels.
template<typename Row, typename Plain>
void expect_row(const Row& row, const Plain& plain) {
    Random random(1);
    for (size_t pixels = 0; pixels < 200; pixels += 1 + pixels / 70) {
        const auto offset = static_cast<size_t>(random.between(0, 63));
        Guarded from(3 * pixels, offset), to(3 * pixels, 63 - offset);
        random.fill(from.data(), 3 * pixels);
        std::vector<uint8_t> expected = from.content();
        for (size_t i = 0; i < expected.size(); i += 3)
            plain(&expected[i]);
        const std::vector<uint8_t> before = from.content();
        row(to.data(), from.data(), pixels);
        ASSERT_EQ(to.content(), expected) << pixels;
        ASSERT_EQ(from.content(), before);
        ASSERT_TRUE(to.intact() && from.intact()) << pixels;
        row(from.data(), from.data(), pixels);
        ASSERT_EQ(from.content(), expected) << pixels;
        ASSERT_TRUE(from.intact()) << pixels;
    }
}

} // namespace

TEST(ToneRows, ScaleEveryByteByEveryFactor) {
    uint8_t bytes[256], scaled[256];
    for (int i = 0; i < 256; ++i)
        bytes[i] = static_cast<uint8_t>(i);
    at_every_cpu_level([&](CpuLevel) {
        for (int factor = 0; factor <= 200; ++factor) {
            for (const int offset : {-255, -128, -1, 0, 1, 77, 255}) {
                tone_rows().scale(scaled, bytes, 256, factor, offset);
                for (int i = 0; i < 256; ++i)
                    ASSERT_EQ(scaled[i], std::clamp(i * factor / 100 + offset, 0, 255))
                        << i << " * " << factor << " + " << offset;
            }
        }
    });
}

TEST(ToneRows, ScaleTouchesItsBytesOnly) {
    at_every_cpu_level([](CpuLevel) {
        expect_row([](uint8_t* to, const uint8_t* from,
                      size_t pixels) { tone_rows().scale(to, from, 3 * pixels, 150, -64); },
                   [](uint8_t* pixel) {
                       for (int c = 0; c < 3; ++c)
                           pixel[c] =
                               static_cast<uint8_t>(std::clamp(pixel[c] * 3 / 2 - 64, 0, 255));
                   });
    });
}

TEST(ToneRows, Map) {
    Random random(2);
    for (int i = 0; i < 3; ++i) {
        const Levels levels = random_levels(random);
        at_every_cpu_level([&](CpuLevel) {
            expect_row([&](uint8_t* to, const uint8_t* from,
                           size_t pixels) { tone_rows().map(to, from, 3 * pixels, levels); },
                       [&](uint8_t* pixel) {
                           for (int c = 0; c < 3; ++c)
                               pixel[c] = levels.level[pixel[c]];
                       });
        });
    }
}

TEST(ToneRows, MapChannels) {
    Random random(3);
    for (int i = 0; i < 3; ++i) {
        const ChannelLevels levels = {
            {random_levels(random), random_levels(random), random_levels(random)}};
        at_every_cpu_level([&](CpuLevel) {
            expect_row([&](uint8_t* to, const uint8_t* from,
                           size_t pixels) { tone_rows().map_channels(to, from, pixels, levels); },
                       [&](uint8_t* pixel) {
                           for (int c = 0; c < 3; ++c)
                               pixel[c] = levels.channel[c].level[pixel[c]];
                       });
        });
    }
}

TEST(ToneRows, PermuteInEveryOrder) {
    for (int i = 0; i < 64; ++i) {
        const ChannelOrder order = {{static_cast<uint8_t>(i & 3), static_cast<uint8_t>(i >> 2 & 3),
                                     static_cast<uint8_t>(i >> 4)}};
        at_every_cpu_level([&](CpuLevel) {
            expect_row([&](uint8_t* to, const uint8_t* from,
                           size_t pixels) { tone_rows().permute(to, from, pixels, order); },
                       [&](uint8_t* pixel) {
                           const uint8_t old[4] = {pixel[0], pixel[1], pixel[2], 0};
                           for (int c = 0; c < 3; ++c)
                               pixel[c] = old[order.from[c]];
                       });
        });
    }
}

TEST(ToneRows, Grey) {
    at_every_cpu_level([](CpuLevel) {
        const auto row = [](uint8_t* to, const uint8_t* from, size_t pixels) {
            tone_rows().grey(to, from, pixels);
        };
        expect_row(row, [](uint8_t* pixel) {
            pixel[0] = pixel[1] = pixel[2] =
                static_cast<uint8_t>((77 * pixel[2] + 150 * pixel[1] + 29 * pixel[0] + 128) / 256);
        });
        const uint8_t white[3] = {255, 255, 255};
        uint8_t grey[3];
        row(grey, white, 1);
        EXPECT_EQ(grey[0], 255);
    });
}

TEST(ToneRows, Flip) {
    const uint8_t pattern[4] = {0x78, 0x56, 0x34, 0x12};
    Random random(4);
    at_every_cpu_level([&](CpuLevel) {
        for (size_t count = 0; count < 200; ++count) {
            Guarded from(count, count % 7), to(count, count % 5);
            random.fill(from.data(), count);
            const std::vector<uint8_t> before = from.content();
            std::vector<uint8_t> expected = before;
            for (size_t i = 0; i < count; ++i)
                expected[i] ^= pattern[i % 4];
            tone_rows().flip(to.data(), from.data(), count, 0x12345678);
            ASSERT_EQ(to.content(), expected) << count;
            ASSERT_EQ(from.content(), before) << count;
            tone_rows().flip(from.data(), from.data(), count, 0x12345678);
            ASSERT_EQ(from.content(), expected) << count;
            ASSERT_TRUE(to.intact() && from.intact()) << count;
        }
    });
}
