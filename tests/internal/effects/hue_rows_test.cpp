// The rows of the hue operations: the definition against doubles written out, and every level of
// the processor against the definition on all differences and saturations.

#include "effects/hue_rows.hpp"

#include "internal/cpu_levels.hpp"
#include "internal/effects/plain_hue.hpp"
#include "internal/guarded.hpp"
#include "support/random.hpp"

#include <algorithm>

using namespace kirvo;
using namespace kirvo_test;

namespace {

std::vector<uint8_t> turned(std::vector<uint8_t> pixels, int degrees) {
    for (size_t i = 0; i < pixels.size(); i += 3) {
        Hue h = hue_of(pixels[i + 2], pixels[i + 1], pixels[i]);
        h.hue = (h.hue + degrees) % 360;
        paint(&pixels[i], h);
    }
    return pixels;
}

std::vector<uint8_t> set(std::vector<uint8_t> pixels, int hue, bool softer) {
    for (size_t i = 0; i < pixels.size(); i += 3) {
        Hue h = hue_of(pixels[i + 2], pixels[i + 1], pixels[i]);
        h.hue = hue;
        if (softer)
            h.saturation = h.saturation * 2 / 3;
        paint(&pixels[i], h);
    }
    return pixels;
}

} // namespace

TEST(HueRows, TurnsEveryHueAndSaturation) {
    const std::vector<uint8_t> pixels = all_hues();
    std::vector<uint8_t> found(pixels.size());
    for (int degrees = 0; degrees < 360; degrees += degrees < 3 ? 1 : 51) {
        const std::vector<uint8_t> expected = turned(pixels, degrees);
        at_every_cpu_level([&](CpuLevel) {
            hue_rows().turn(found.data(), pixels.data(), pixels.size() / 3, degrees);
            ASSERT_TRUE(found == expected) << degrees;
        });
    }
}

TEST(HueRows, SetsEveryHueForEverySaturation) {
    std::vector<uint8_t> pixels;
    for (int saturation = 0; saturation < 256; ++saturation) {
        for (const int least : {0, (255 - saturation) / 2, 255 - saturation})
            pixels.insert(pixels.end(), {static_cast<uint8_t>(least),
                                         static_cast<uint8_t>(least + saturation / 3),
                                         static_cast<uint8_t>(least + saturation)});
    }
    std::vector<uint8_t> found(pixels.size());
    for (int hue = 0; hue < 360; ++hue) {
        for (const bool softer : {false, true}) {
            const std::vector<uint8_t> expected = set(pixels, hue, softer);
            at_every_cpu_level([&](CpuLevel) {
                hue_rows().set(found.data(), pixels.data(), pixels.size() / 3, hue, softer);
                ASSERT_TRUE(found == expected) << hue << " " << softer;
            });
        }
    }
}

TEST(HueRows, TouchTheirPixelsOnly) {
    Random random(1);
    at_every_cpu_level([&](CpuLevel) {
        for (size_t pixels = 0; pixels < 200; pixels += 1 + pixels / 70) {
            const auto offset = static_cast<size_t>(random.between(0, 63));
            Guarded from(3 * pixels, offset), to(3 * pixels, 63 - offset);
            random.fill(from.data(), 3 * pixels);
            const std::vector<uint8_t> before = from.content();
            hue_rows().turn(to.data(), from.data(), pixels, 99);
            ASSERT_EQ(to.content(), turned(before, 99));
            hue_rows().set(to.data(), from.data(), pixels, 171, true);
            ASSERT_EQ(to.content(), set(before, 171, true));
            ASSERT_EQ(from.content(), before);
            hue_rows().turn(from.data(), from.data(), pixels, 200);
            ASSERT_EQ(from.content(), turned(before, 200));
            hue_rows().set(to.data(), to.data(), pixels, 10, false);
            ASSERT_EQ(to.content(), set(set(before, 171, true), 10, false));
            ASSERT_TRUE(from.intact() && to.intact()) << pixels;
        }
    });
}
